// Requests to the shell, and the start.
#include <gtest/gtest.h>

#include <optional>

#include "app/frmMain.hpp"
#include "app/modStartup.hpp"
#include "dialogs/CShellExecute.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

struct Subject {
    ReportingPlatform platform;
    HeadlessShell& shell = platform.shell;
    std::optional<CShellExecute> execute{std::in_place, shell};
    std::string out;
    void Note(std::int32_t result) { out += Row(result, ""); }
};

const Verbs<Subject> kVerbs = {
    {"url", [](Subject& s, Argument url) { s.Note(s.execute->LaunchURL(7, url)); }},
    {"explore", [](Subject& s, Argument folder) { s.Note(s.execute->Explore(7, folder)); }},
    {"folder", [](Subject& s, Argument folder) { s.Note(s.execute->LaunchFolder(7, folder)); }},
    {"email", [](Subject& s, Argument whom) { s.Note(s.execute->LaunchEmail(7, whom)); }},
    {"print", [](Subject& s, Argument file) { s.Note(s.execute->PrintDocument(7, file)); }},
    {"program",
     [](Subject& s, Argument file) { s.Note(s.execute->LaunchProgram(7, file, "-x", "C:\\")); }},
    {"document",
     [](Subject& s, Argument file) { s.Note(s.execute->LaunchDocument(7, file, "-y", "D:\\")); }},
    {"code", [](Subject& s, Argument code) { s.shell.code = std::stoi(code); }},
    {"ends", [](Subject& s, Argument) { s.shell.running = false; }},
    {"active", [](Subject& s, Argument) { s.out += FromBool(s.execute->StillExecuting()) + " "; }},
    {"gone", [](Subject& s, Argument) { s.execute.reset(); }},
    {"released", [](Subject& s, Argument) { s.Note(s.shell.released); }},
    {"asked",
     [](Subject& s, Argument) {
         const ShellRequest& last = s.shell.asked.back();
         s.out += Row(last.owner, last.verb, last.file, last.parameters, last.folder, last.show);
     }},
};

TEST(CShellExecute, AsksAndWatchesAsTheTableSays) {
    ExpectTable("shell", kVerbs);
}

// The system has one filter for each process, however often the program starts in it.
TEST(Startup, TheFilterForUnhandledErrorsIsInstalledOnce) {
    int filters = 0;
    for (int start = 0; start < 2; ++start) {
        HeadlessPlatform platform;
        modStartup startup(platform.platform);
        ASSERT_TRUE(startup.Main());
        filters += platform.process.filters;
        startup.MainWindow()->Unload();
    }
    EXPECT_EQ(filters, 1);
}

}  // namespace
}  // namespace vantor
