// The requests to the shell, and the file versions read for the report of installed versions.
#include <gtest/gtest.h>

#include "app/base/modSupport.hpp"
#include "app/frmMain.hpp"
#include "dialogs/CShellExecute.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

TEST(CShellExecute, EachMemberHandsItsVerbOverAndTellsFailuresByTheirCode) {
    ReportingPlatform platform;
    HeadlessShell& shell = platform.shell;
    CShellExecute execute(shell);
    EXPECT_EQ(execute.LaunchURL(7, "http:\\\\x"), -1);
    EXPECT_EQ(execute.Explore(7, "C:\\"), -1);
    EXPECT_EQ(execute.LaunchFolder(7, "C:\\"), -1);
    EXPECT_EQ(execute.LaunchEmail(7, "a@b"), -1);
    EXPECT_EQ(execute.PrintDocument(7, "d"), -1);
    std::string asked;
    for (const ShellRequest& each : shell.asked)
        asked += each.verb + "|" + each.file + "|" + std::to_string(each.show) + ";";
    EXPECT_EQ(asked, "|http:\\\\x|1;explore|C:\\|1;open|C:\\|1;|mailto:a@b|1;print|d|0;");
    for (const std::int32_t code : {2, 31, 32, 33}) {
        shell.code = code;
        EXPECT_EQ(execute.LaunchURL(7, ""), code < 33 ? code : -1);
    }
}

TEST(CShellExecute, AStartedProcessIsWatchedUntilTheNextLaunchAndLetGoOf) {
    ReportingPlatform platform;
    HeadlessShell& shell = platform.shell;
    {
        CShellExecute execute(shell);
        EXPECT_FALSE(execute.StillExecuting());
        EXPECT_EQ(execute.LaunchProgram(7, "p", "-x", "C:\\"), -1);
        EXPECT_EQ(shell.asked.back().parameters + shell.asked.back().folder, "-xC:\\");
        EXPECT_TRUE(execute.StillExecuting());
        shell.running = false;
        EXPECT_FALSE(execute.StillExecuting());
        execute.LaunchDocument(7, "d", "", "");
        EXPECT_EQ(shell.released, 1);
        execute.LaunchURL(7, "u");
        EXPECT_FALSE(execute.StillExecuting()) << "an address has no process";
        execute.LaunchProgram(7, "p", "", "");
    }
    EXPECT_EQ(shell.released, 3) << "a handle leaked";
}

TEST(Versions, TheReportTellsOnlyTheFileVersionInTheLanguageThatIsNamed) {
    ReportingPlatform platform(Language::Spanish);
    const auto install = [&](const std::string& program, const std::string& language,
                             const std::string& name, const std::string& text) {
        platform.versions.resources[AppPath(platform.process) + program] = {
            0x0409, 0x04B0, {{"\\StringFileInfo\\" + language + "\\" + name, text}}};
    };
    install("caldor.exe", "040904B0", "FileVersion", " 3.1 \0x"s);
    install("caldoredit.exe", "0C0A04E4", "FileVersion", " 3.1 \0x"s);
    install("pellin.exe", "040904B0", "ProductVersion", "9");
    const auto window = std::make_shared<frmMain>(platform.manager, platform.platform);
    window->Load();
    window->mnuToolsCurrentVersions.Press();
    EXPECT_EQ(Told(platform),
              Texts{"i|Installed Software Version Information|Caldor Version: 3.1\r\n"
                    "Caldor Editor Version: Unknown\r\nPellin Version: Unknown\r\n"
                    "Web Update Version: Unknown\r\n"});
}

}  // namespace
}  // namespace vantor
