// The contents of the common dialogs' record, and the results read from it. The traces have the
// dialogs of the program.
#include "support/CFileDialog.hpp"

#include <gtest/gtest.h>

#include "tests/faults/ReportingPlatform.hpp"
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
    ScriptedDialogs dialogs;
    CFileDialog dialog{dialogs};
    std::string out;
};

const Verbs<Subject> kVerbs = {
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

TEST(CFileDialog, GivesAndTakesWhatTheTableSays) {
    ExpectTable("file-dialog", kVerbs);
}

}  // namespace
}  // namespace vantor
