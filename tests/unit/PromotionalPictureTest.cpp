// The cached picture of the main window: which files count, what their headers say, and where a
// click leads.
#include <gtest/gtest.h>

#include <tuple>

#include "ReportingPlatform.hpp"
#include "app/frmMain.hpp"
#include "content/CImageInfo.hpp"
#include "content/PictureFiles.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

using Header = std::tuple<int, int, int, int>;  // type, width, height, depth

Header HeaderOf(const std::string& bytes) {
    HeadlessFiles files;
    files.Add("/p", bytes);
    CImageInfo info(files);
    info.ReadImageInfo("/p");
    return {static_cast<int>(info.ImageType()), info.Width(), info.Height(), info.Depth()};
}

std::string Png(char bitDepth, char colourType) {
    std::string bytes = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\1\2\3\0\4\5\6"s;
    bytes += bitDepth;
    bytes += colourType;
    return bytes;
}

TEST(CImageInfo, TheHeaderTellsTypeSizeAndDepth) {
    EXPECT_EQ(HeaderOf("GIF89a\x01\x02\x03\x04\xF7"), Header(1, 0x201, 0x403, 8));
    const std::string bmp = "BM"s + std::string(16, '\0') + "\x11\x01\0\0\x22\x02\0\0\1\0\x18"s;
    EXPECT_EQ(HeaderOf(bmp), Header(4, 0x111, 0x222, 24));
    EXPECT_EQ(HeaderOf(Png(8, 0)), Header(3, 0x203, 0x506, 8));
    EXPECT_EQ(HeaderOf(Png(8, 2)), Header(3, 0x203, 0x506, 24));
    EXPECT_EQ(HeaderOf(Png(4, 3)), Header(3, 0x203, 0x506, 8));
    EXPECT_EQ(HeaderOf(Png(8, 4)), Header(3, 0x203, 0x506, 16));
    EXPECT_EQ(HeaderOf(Png(16, 6)), Header(3, 0x203, 0x506, 64));
    EXPECT_EQ(HeaderOf(Png(8, 5)), Header(0, 0, 0, 0));
    EXPECT_EQ(Raised([] { HeaderOf(Png(127, 6)); }).Number(), 6);
    EXPECT_EQ(HeaderOf(""), Header(0, 0, 0, 0));
    EXPECT_EQ(HeaderOf("a text"), Header(0, 0, 0, 0));
}

TEST(CImageInfo, AJpegFrameIsFoundBehindOtherSegmentsAndNotBeyondTheSearch) {
    const std::string start = "\xFF\xD8\xFF\xE0\0\x04zz"s;
    const std::string table = "\xFF\xC4\0\x02"s;
    const std::string frame = "\xFF\xFF\xC2\0\x11\x08\x01\x02\x03\x04\x03"s;
    EXPECT_EQ(HeaderOf(start + table + frame), Header(2, 0x304, 0x102, 24));
    EXPECT_EQ(HeaderOf("junk" + start + frame), Header(2, 0x304, 0x102, 24));
    EXPECT_EQ(HeaderOf(start + table), Header(0, 0, 0, 0));
    EXPECT_EQ(HeaderOf(start + std::string(65503, 'x') + frame), Header(2, 0x304, 0x102, 24));
    EXPECT_EQ(HeaderOf(start + std::string(65600, 'x') + frame), Header(0, 0, 0, 0));
}

TEST(PictureFilesToArray, OnlyLowerCaseEndingsOfVisibleFilesCount) {
    HeadlessFiles files;
    for (const char* name : {"a.gif", "b.JPG", "c.jpg", "gif", "xbmp", "e.png", "f.jpeg", "h.bmp"})
        files.Add(std::string("/c/") + name, "");
    files.SetHidden("/c/h.bmp");
    std::vector<std::string> names;
    EXPECT_EQ(PictureFilesToArray(files, "/c", false, false, names), 3);
    EXPECT_EQ(names, (Texts{"a.gif", "c.jpg", "xbmp"}));
    EXPECT_EQ(PictureFilesToArray(files, "/c\\", true, false, names), 4);
    EXPECT_EQ(PictureFilesToArray(files, "/missing", false, false, names), 0);
}

class PromotionalPictureTest : public testing::Test {
protected:
    static constexpr const char* kCache = "/home/tech/.config/TSMR/CALDOR/cache/";
    static constexpr const char* kGif = "GIF89a\1\1\1\1\1";

    void Put(const std::string& name, const std::string& bytes) {
        mPlatform.files.Add(kCache + name, bytes);
    }
    PictureBox& Shown() {
        mWindow = std::make_shared<frmMain>(mPlatform.desktop, mPlatform.platform);
        mWindow->Load();
        return mWindow->picPicture;
    }
    /// The address that a click opens; empty when it opens none.
    std::string Clicked() {
        mPlatform.shell.asked.clear();
        mWindow->picPicture.Press();
        EXPECT_EQ(mPlatform.peers.pointer, MousePointer::Default);
        return mPlatform.shell.asked.empty() ? "" : mPlatform.shell.asked.back().file;
    }

    ReportingPlatform mPlatform;
    std::shared_ptr<frmMain> mWindow;
};

TEST_F(PromotionalPictureTest, AFileThatCannotBeReadGivesWayToTheBuiltInPictureSilently) {
    Put("a.gif", kGif);
    mPlatform.files.FailOn(std::string(kCache) + "a.gif", 70);
    EXPECT_TRUE(Shown().Loaded() == nullptr && Shown().Tag().empty());
    EXPECT_EQ(Told(mPlatform), Texts{});
}

TEST_F(PromotionalPictureTest, AClickOpensTheFourthFieldOfTheFirstLineThatHoldsTheName) {
    Put("a.gif", kGif);
    const std::pair<const char*, const char*> kIndexes[] = {
        {"1|2|a.gif|http://a\r\n1|2|a.gif|http://later", "http://a"},
        {"1|2|aa.gif|http://aa|5\n1|2|a.gif|http://a", "http://aa"},
        {"a.gif|2|3\r\n|||http://short|a.gif", "http://short"},
        {"1|2|A.GIF|http://case", ""},
        {"1|a.gif|3|", ""},
        {"b.gif", ""}};
    for (const auto& [index, address] : kIndexes) {
        Put("cache.txt", index);
        EXPECT_EQ(Shown().Tag(), "a.gif");
        EXPECT_EQ(Clicked(), address) << index;
    }
    EXPECT_EQ(Told(mPlatform), Texts{});
    mPlatform.files.Delete(std::string(kCache) + "cache.txt");
    EXPECT_EQ(Clicked(), "");
    EXPECT_EQ(Told(mPlatform),
              Texts{ReportBox("frmMain.picPicture_Click", "(9) Subscript out of range")});
}

TEST_F(PromotionalPictureTest, EveryPictureOfTheCacheComesUpSometime) {
    for (const char* name : {"a.gif", "b.gif", "c.gif"}) Put(name, kGif);
    std::string seen;
    for (int i = 0; i < 60; ++i) {
        const std::string name = Shown().Tag();
        if (seen.find(name) == std::string::npos) seen += name;
        mPlatform.clock.Sleep(977);
    }
    EXPECT_EQ(seen.size(), 15u) << seen;
}

}  // namespace
}  // namespace vantor
