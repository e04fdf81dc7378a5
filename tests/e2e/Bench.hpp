// What each of these tests starts from: the program running with fresh settings, an image of 60
// records to send, and an indicator that the test starts as it needs it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "app/base/AppInfo.hpp"
#include "tests/Images.hpp"
#include "tests/e2e/App.hpp"

namespace vantor::e2e {

class Bench : public testing::Test {
protected:
    Bench() {
        std::ofstream(image, std::ios::binary) << ImageOf(60);
        ForgetSettings();
        app.emplace();
    }

    static std::wstring ProgramKey() {
        const AppInfo program;
        return ToWide("SOFTWARE\\" + program.companyName + "\\" + program.title);
    }
    static void ForgetSettings() { RegDeleteTreeW(HKEY_CURRENT_USER, ProgramKey().c_str()); }

    void TearDown() override {
        if (HasFailure()) Ask("keep " + Name());
    }

    static std::string Name() {
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string(test.test_suite_name()) + "." + test.name();
        std::ranges::replace(name, '/', '.');
        return name;
    }

    /// Presses the start button and chooses the image.
    void AskForFlash() const {
        app->Press("cmdFlash");
        app->ChooseFile(image);
    }
    /// The same, and says Yes to the warning.
    void StartFlash() const {
        AskForFlash();
        app->TakeBox(IDYES);
    }

    void AwaitLine(int line) const {
        Await("line " + std::to_string(line), [&] { return app->Line() >= line; });
    }

    /// Closes the program and starts it again.
    void Restart() {
        app->Close();
        EXPECT_EQ(app->Wait(), 0u);
        app.emplace();
    }

    static std::string Content(const char* name) {
        std::ifstream file(FileOfRun(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string image = FileOfRun("image.run");
    Indicator indicator;
    std::optional<App> app;
};

}  // namespace vantor::e2e
