// Requests to the shell and to the common dialogs, and what is read from their answers. The
// scenarios have the dialogs of the program.
#include <gtest/gtest.h>

#include <optional>

#include "dialogs/CShellExecute.hpp"
#include "support/CFileDialog.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

/// The user leaves `file` and `title` in the buffers, and confirms or cancels.
struct ScriptedDialogs : CommonDialogs {
    bool OpenFile(FileDialogRecord& record) override { return Answer("open", record); }
    bool SaveFile(FileDialogRecord& record) override { return Answer("save", record); }
    bool Answer(const char* which, FileDialogRecord& record) {
        shown += Row(which, record.owner, record.flags, record.title, record.defaultExtension,
                     record.initialFolder, record.filter, record.filterIndex, record.file,
                     record.fileTitle, record.maxFile) +
                 "; ";
        record.file = file;
        record.fileTitle = title;
        record.filterIndex = 9;
        return confirms;
    }
    std::string shown;
    std::string file;
    std::string title;
    bool confirms = true;
};

struct Subject {
    ReportingPlatform platform;
    HeadlessShell& shell = platform.shell;
    std::optional<CShellExecute> execute{std::in_place, shell};
    ScriptedDialogs dialogs;
    CFileDialog dialog{dialogs};
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
    // A file dialog.
    {"size", [](Subject& s, Argument size) { s.dialog.MaxFileSize = std::stoi(size); }},
    {"name", [](Subject& s, Argument name) { s.dialog.FileName = name; }},
    {"title", [](Subject& s, Argument title) { s.dialog.FileTitle = title; }},
    {"all",
     [](Subject& s, Argument) {
         s.dialog.DefaultExt = ".run";
         s.dialog.DialogTitle = "Title";
         s.dialog.Filter = "Text|*.txt";
         s.dialog.FilterIndex = 3;
         s.dialog.Flags = -1;
         s.dialog.hWndParent = 7;
         s.dialog.InitialDir = "C:\\dir";
     }},
    {"cancels", [](Subject& s, Argument) { s.dialogs.confirms = false; }},
    {"file", [](Subject& s, Argument bytes) { s.dialogs.file = bytes; }},
    {"file-title", [](Subject& s, Argument bytes) { s.dialogs.title = bytes; }},
    {"show",  // "open" or "save"
     [](Subject& s, Argument which) {
         s.out += FromBool(s.dialog.Show(which == "open")) + "|" + s.dialog.FileName + "|" +
                  s.dialog.FileTitle + "|" + std::to_string(s.dialog.FilterIndex) + " ";
     }},
    {"shown", [](Subject& s, Argument) { s.out += s.dialogs.shown; }},
};

TEST(Requests, ToTheShellAreThoseOfTheTable) {
    ExpectTable("shell", kVerbs);
}

TEST(Requests, ToTheFileDialogAreThoseOfTheTable) {
    ExpectTable("file-dialog", kVerbs);
}

}  // namespace
}  // namespace vantor
