// What is handed to the shell, and what the report of installed versions reads from files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ReportingPlatform.hpp"
#include "app/frmMain.hpp"
#include "dialogs/CShellExecute.hpp"

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

std::string U16(std::size_t value) {
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
}
std::string U32(std::size_t value) {
    return U16(value & 0xFFFF) + U16(value >> 16);
}
std::string Wide(const std::string& text) {
    std::string wide;
    for (const char c : text) wide += std::string{c, '\0'};
    return wide;
}
void Align(std::string& bytes) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
}

/// A node of a version block; `words` is the length of a text value, 0 for a binary one.
std::string Node(const std::string& key, const std::string& value, std::size_t words,
                 const std::vector<std::string>& children = {}) {
    std::string rest =
        U16(words != 0 ? words : value.size()) + U16(words != 0 ? 1 : 0) + Wide(key + "\0"s);
    rest.insert(0, 2, '\0');
    Align(rest);
    rest += value;
    for (const std::string& child : children) {
        Align(rest);
        rest += child;
    }
    return rest.replace(0, 2, U16(rest.size()));
}

std::string Text(const std::string& key, const std::string& value) {
    return Node(key, Wide(value), value.size());
}

/// A program file that holds nothing but headers and a version block.
std::string Program(const std::vector<std::string>& texts, const std::string& key = "0C0A04E4",
                    const std::string& translation = "\x0A\x0C\xE4\x04") {
    const std::string block =
        Node("VS_VERSION_INFO", std::string(52, 'f'), 0,
             {Node("StringFileInfo", "", 0, {Node(key, "", 0, texts)}),
              Node("VarFileInfo", "", 0, {Node("Translation", translation, 0)})});
    constexpr std::size_t kSection = 0x200;
    constexpr std::size_t kAddress = 0x3000;
    const auto directory = [](std::size_t id, std::size_t offset) {
        return std::string(12, '\0') + U16(0) + U16(1) + U32(id) + U32(offset);
    };
    const std::string resources = directory(16, 0x80000018) + directory(1, 0x80000030) +
                                  directory(1033, 0x48) + U32(kAddress + 0x58) + U32(block.size()) +
                                  U32(0) + U32(0) + block;
    std::string file = "MZ" + std::string(58, '\0') + U32(0x40) + "PE\0\0"s + U16(0x8664) + U16(1) +
                       std::string(12, '\0') + U16(240) + U16(0);
    std::string optional = U16(0x20B) + std::string(126, '\0') + U32(kAddress) + U32(0x1000);
    optional.resize(240);
    file += optional + ".rsrc\0\0\0"s + U32(0x1000) + U32(kAddress) + U32(resources.size()) +
            U32(kSection);
    file.resize(kSection);
    return file + resources;
}

class VersionsTest : public testing::Test {
protected:
    std::string Reported(Language language = Language::English) {
        ReportingPlatform platform(language);
        for (const auto& [name, bytes] : mInstalled)
            platform.files.Add("/opt/vantor/" + name, bytes);
        Desktop desktop(platform.peers, platform.pump);
        const auto window = std::make_shared<frmMain>(desktop, platform.platform);
        window->Load();
        window->mnuToolsCurrentVersions.Press();
        return Told(platform).empty() ? "" : Told(platform).back();
    }
    std::map<std::string, std::string> mInstalled;
};

TEST_F(VersionsTest, TheReportNamesFourProgramsAndOnlyTheirFileVersions) {
    mInstalled = {
        {"caldor.exe",
         Program({Text("ProductVersion", "9"), Text("FileVersion", "  3.1 "s + "\0"s)})},
        {"caldoredit.exe", Program({Text("ProductVersion", "9.9")})},
        {"pellin.exe", Program({Text("FileVersion", " \0x"s)})},
        {"tsupdate.exe", Program({Text("FileVersion", "2.05.31"), Text("Comments", "c")})}};
    EXPECT_EQ(Reported(),
              "i|Installed Software Version Information|Caldor Version: 3.1\r\n"
              "Caldor Editor Version: Unknown\r\nPellin Version: Unknown\r\n"
              "Web Update Version: 2.05.31\r\n");
}

TEST_F(VersionsTest, MissingBrokenAndMistranslatedFilesAreUnknown) {
    const std::string whole = Program({Text("FileVersion", "1.0")});
    for (std::size_t size = 0; size < whole.size(); size += 7) {
        mInstalled = {{"caldor.exe", whole.substr(0, size)}};
        EXPECT_EQ(Reported().find("Caldor Version: 1.0\r\n"), std::string::npos) << size;
    }
    mInstalled = {
        {"caldor.exe", Program({Text("FileVersion", "1.0")}, "040904B0")},
        {"pellin.exe", Program({Text("FileVersion", "1.0")}, "040904b0", "\x09\x04\xB0\x04")}};
    const std::string report = Reported(Language::Spanish);
    EXPECT_NE(report.find("Caldor Version: Unknown"), std::string::npos) << report;
    EXPECT_NE(report.find("Pellin Version: 1.0\r\n"), std::string::npos) << report;
}

}  // namespace
}  // namespace vantor
