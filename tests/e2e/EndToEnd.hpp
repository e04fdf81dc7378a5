// Fixture of these tests: the workbench; when a test fails, it keeps a screenshot and the log.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>

#include "tests/driver/Workbench.hpp"

namespace vantor::driver {

inline void PrintTo(const Box& box, std::ostream* stream) {
    *stream << box.icon << " box [" << box.title << "] \"" << box.text << "\", buttons";
    for (const int button : box.buttons) *stream << ' ' << button;
}

class EndToEnd : public testing::Test, protected Workbench {
protected:
    void TearDown() override {
        if (!HasFailure()) return;
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string(test.test_suite_name()) + "." + test.name();
        std::ranges::replace(name, '/', '.');
        Ask("keep " + name);
    }
};

}  // namespace vantor::driver
