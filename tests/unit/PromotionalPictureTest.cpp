// The cached picture of the main window: which files are accepted, and their headers.
// The end-to-end tests check the URL that a click opens.
#include <gtest/gtest.h>

#include <tuple>

#include "app/frmMain.hpp"
#include "content/CImageInfo.hpp"
#include "content/PictureFiles.hpp"
#include "tests/faults/ReportingPlatform.hpp"

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
    std::string bmp = "BM";
    bmp.append(16, '\0').append("\x11\x01\0\0\x22\x02\0\0\1\0\x18"s);
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
    const std::string startAndTable = "\xFF\xD8\xFF\xE0\0\x04zz\xFF\xC4\0\x02"s;
    const std::string frame = "\xFF\xFF\xC2\0\x11\x08\x01\x02\x03\x04\x03"s;
    EXPECT_EQ(HeaderOf(startAndTable), Header(0, 0, 0, 0));
    const auto behind = [&frame](std::string bytes, std::size_t more) {
        bytes.append(more, 'x').append(frame);
        return HeaderOf(bytes);
    };
    const Header found(2, 0x304, 0x102, 24);
    EXPECT_EQ(behind(startAndTable, 0), found);
    EXPECT_EQ(behind("junk\xFF\xD8", 0), found);
    EXPECT_EQ(behind(start, 65503), found);
    EXPECT_EQ(behind(start, 65600), Header(0, 0, 0, 0));
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
    const std::string kCache = "/home/tech/.config/TSMR/CALDOR/cache/";
    static constexpr const char* kGif = "GIF89a\1\1\1\1\1";

    void Put(const std::string& name, const std::string& bytes) {
        mPlatform.files.Add(kCache + name, bytes);
    }
    PictureBox& Shown() {
        mWindow = std::make_shared<frmMain>(mPlatform.manager, mPlatform.platform);
        mWindow->Load();
        return mWindow->picPicture;
    }

    ReportingPlatform mPlatform;
    std::shared_ptr<frmMain> mWindow;
};

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
