// Contract of Files (file system).
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class FilesContract : public Contract {
protected:
    std::string At(const std::string& name) const { return folder + name; }
};
INSTANTIATE_CONTRACT(FilesContract);

TEST_P(FilesContract, BytesComeBackAsTheyWereWritten) {
    const std::string bytes = "line\r\nline\n\x1A" + AllBytes();
    files->WriteAll(At("\\image.s19"), "an older and longer text" + bytes);
    files->WriteAll(At("\\image.s19"), bytes);
    files->Append(At("/image.s19"), "tail\n");
    EXPECT_EQ(files->ReadAll(At("\\image.s19")), bytes + "tail\n");
    EXPECT_EQ(files->Size(At("/image.s19")), bytes.size() + 5);
    EXPECT_EQ(files->ReadStart(At("/image.s19"), 5), "line\r");
    EXPECT_EQ(files->ReadStart(At("/image.s19"), 65535), bytes + "tail\n");
    EXPECT_EQ(files->ReadStart(At("/image.s19"), 0), "");
    files->Append(At("/new.log"), "");
    EXPECT_EQ(files->ReadAll(At("/new.log")), "");
    files->Delete(At("\\new.log"));
    EXPECT_FALSE(files->Exists(At("/new.log")));
}

TEST_P(FilesContract, AFileBeingWrittenReplacesTheOldOneAndCanBeReadMeanwhile) {
    files->WriteAll(At("\\capture.txt"), "an older text");
    const std::unique_ptr<OutputFile> file = files->Create(At("\\capture.txt"));
    EXPECT_EQ(files->ReadAll(At("/capture.txt")), "");
    file->Write(std::string("a\0\r\n\x1A", 5));
    file->Write("");
    file->Write("b");
    EXPECT_EQ(files->ReadAll(At("/capture.txt")), std::string("a\0\r\n\x1A"
                                                              "b",
                                                              6));
    EXPECT_EQ(ErrorOf([&] { files->Create(At("\\no folder\\new.txt")); }), 76);
    EXPECT_NE(ErrorOf([&] { files->Create(folder); }), 0);
}

TEST_P(FilesContract, FoldersAreMadeWithAllAboveThemAndAreNoFiles) {
    files->CreateFolders(At("\\reports\\2026/may"));
    files->CreateFolders(At("\\reports\\2026/may"));
    files->WriteAll(At("/reports/2026\\may\\error.txt"), "x");
    EXPECT_TRUE(files->Exists(At("\\reports\\2026\\may/error.txt")));
    EXPECT_FALSE(files->Exists(At("\\reports")));
    EXPECT_EQ(ErrorOf([&] { files->Size(At("\\reports")); }), 53);
    EXPECT_NE(ErrorOf([&] { files->CreateFolders(At("\\reports\\2026\\may\\error.txt\\x")); }), 0);
}

TEST_P(FilesContract, AFileIsTheSameUnderEachOfItsPathsAndNoOther) {
    files->WriteAll(At("\\image.run"), "x");
    files->WriteAll(At("\\copy.run"), "x");
    EXPECT_TRUE(files->SameFile(At("\\image.run"), At("/./image.run")));
    EXPECT_FALSE(files->SameFile(At("\\image.run"), At("\\copy.run")));
    EXPECT_FALSE(files->SameFile(At("\\none.run"), At("\\none.run")));
}

TEST_P(FilesContract, WhatIsMissingHasItsErrorNumber) {
    EXPECT_FALSE(files->Exists(At("\\none.txt")));
    EXPECT_FALSE(files->Exists(At("\\no folder\\none.txt")));
    EXPECT_FALSE(files->Exists(""));
    EXPECT_EQ(ErrorOf([&] { files->Size(At("\\none.txt")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files->ReadAll(At("\\none.txt")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files->Delete(At("\\none.txt")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files->ReadAll(At("\\no folder\\none.txt")); }), 76);
    EXPECT_EQ(ErrorOf([&] { files->WriteAll(At("\\no folder\\new.txt"), "x"); }), 76);
    EXPECT_EQ(ErrorOf([&] { files->Append(At("\\no folder\\new.txt"), "x"); }), 76);
    EXPECT_NE(ErrorOf([&] { files->WriteAll(folder, "x"); }), 0);
}

TEST_P(FilesContract, AListHoldsTheMatchingFilesInOrderAndNamesOutsideTheCodePageToo) {
    for (const char* name : {"/b.GIF", "/a.gif", "/c.gif.doc", "/pict1.jpg"})
        files->WriteAll(At(name), "x");
    files->CreateFolders(At("/folder.gif"));
    using Names = std::vector<std::string>;
    EXPECT_EQ(files->List(folder, "*.gif", {}), (Names{"a.gif", "b.GIF"}));
    EXPECT_EQ(files->List(folder, "PICT?.*", {}), Names{"pict1.jpg"});
    EXPECT_EQ(files->List(folder, "*", {}).size(), 4u);
    EXPECT_EQ(files->List(folder, "*.bmp", {}), Names{});
    EXPECT_EQ(files->List(At("\\no folder"), "*", {}), Names{});
    files->WriteAll(At("\\ñandú 重量.txt"), "x");
    EXPECT_EQ(files->List(folder, "*.txt", {}), Names{"ñandú 重量.txt"});
    EXPECT_EQ(files->ReadAll(At("/ñandú 重量.txt")), "x");
}

}  // namespace vantor::contract
