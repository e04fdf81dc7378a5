// One test per script of the file DRIVE_STEPS.
#include <gtest/gtest.h>

#include "tests/driver/App.hpp"
#include "tests/driver/Steps.hpp"

int main(int argc, char** argv) {
    using namespace vantor;
    struct Scripted : testing::Test {
        Scripted(std::string script, Words steps)
            : name(std::move(script)), lines(std::move(steps)) {}
        void TestBody() override { driver::RunSteps(name, lines); }
        std::string name;
        Words lines;
    };
    testing::InitGoogleTest(&argc, argv);
    driver::EnterDesktop();
    for (const auto& [name, lines] : ScriptsIn(driver::Setting("DRIVE_STEPS")))
        testing::RegisterTest(
            "TsUpdate", name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
            [name = name, lines = lines]() -> testing::Test* { return new Scripted(name, lines); });
    return RUN_ALL_TESTS();
}
