// The contents of the common dialogs' record, and the results read from it.
#include "support/CFileDialog.hpp"

#include <gtest/gtest.h>

#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

class ScriptedDialogs : public CommonDialogs {
public:
    bool OpenFile(FileDialogRecord& record) override { return Answer("open", record); }
    bool SaveFile(FileDialogRecord& record) override { return Answer("save", record); }

    std::string kind;
    FileDialogRecord shown;
    std::function<bool(FileDialogRecord&)> answer = [](FileDialogRecord&) { return false; };

private:
    bool Answer(const char* which, FileDialogRecord& record) {
        kind = which;
        shown = record;
        return answer(record);
    }
};

class CFileDialogTest : public testing::Test {
protected:
    ReportingPlatform mPlatform;
    ScriptedDialogs mDialogs;
    CFileDialog mDialog{mDialogs};
};

TEST_F(CFileDialogTest, WhatComesBackIsCutAtTheFirstPairOfNuls) {
    const struct {
        const char* what;
        std::string buffer;
        std::string name;
    } kCases[] = {{"one file", "C:\\a.run"s + std::string(20, '\0'), "C:\\a.run"},
                  {"a rest of an older name behind it", "C:\\a.run\0\0older\0\0"s, "C:\\a.run"},
                  {"several files", "C:\\x\0a.run\0b.run\0\0\0"s, "C:\\x a.run b.run"},
                  {"a full buffer", "C:\\x\0a.run"s, "C:\\x a.run"},
                  {"one NUL at the very end", "C:\\a.run\0"s, "C:\\a.run "},
                  {"nothing", std::string(5, '\0'), ""}};
    for (const auto& c : kCases) {
        mDialog.FileName.clear();
        mDialog.FileTitle.clear();
        mDialogs.answer = [&c](FileDialogRecord& record) {
            record.file = c.buffer;
            record.fileTitle = c.buffer.substr(3);
            record.filterIndex = 9;
            return true;
        };
        EXPECT_TRUE(mDialog.Show(true)) << c.what;
        EXPECT_EQ(mDialog.FileName, c.name) << c.what;
        if (!c.name.empty()) {
            EXPECT_EQ(mDialog.FileTitle, c.name.substr(3)) << c.what;
        }
        EXPECT_EQ(mDialog.FilterIndex, 0) << "the user's choice is not read back";
    }
}

TEST_F(CFileDialogTest, ACancelKeepsBothNamesWhateverTheBuffersHold) {
    mDialog.FileName = "C:\\old.run";
    mDialog.FileTitle = "old.run";
    mDialogs.answer = [](FileDialogRecord& record) {
        record.file = "C:\\new.run\0\0"s;
        record.fileTitle = "new.run\0\0"s;
        return false;
    };
    EXPECT_FALSE(mDialog.Show(false));
    EXPECT_EQ(mDialog.FileName, "C:\\old.run");
    EXPECT_EQ(mDialog.FileTitle, "old.run");
    EXPECT_EQ(Told(mPlatform), Texts{});
}

TEST_F(CFileDialogTest, ANameBeyondTheBufferIsReportedAndNoDialogShown) {
    mDialog.MaxFileSize = 5;
    mDialog.FileName = "12345";
    mDialog.Show(true);
    EXPECT_EQ(mDialogs.shown.file, "12345") << "a name that just fits";

    mDialogs.kind.clear();
    mDialog.FileName = "123456";
    EXPECT_FALSE(mDialog.Show(true));
    EXPECT_EQ(mDialogs.kind, "");
    EXPECT_EQ(Told(mPlatform), Texts{ReportBox("CFileDialog.Show", "(6) Overflow")});
    EXPECT_EQ(mDialog.FileName, "123456");
}

}  // namespace
}  // namespace vantor
