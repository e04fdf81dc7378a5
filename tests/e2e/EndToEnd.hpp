// Fixture of these tests: the workbench; when a test fails, it keeps a screenshot and the log.
#pragma once

#include <gtest/gtest.h>

#include "tests/driver/Workbench.hpp"

namespace vantor::driver {

class EndToEnd : public testing::Test, protected Workbench {
protected:
    void TearDown() override {
        if (!HasFailure()) return;
        Ask(std::string("keep ") + testing::UnitTest::GetInstance()->current_test_info()->name());
    }
};

}  // namespace vantor::driver
