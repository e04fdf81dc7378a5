// Splitting a firmware image into lines. A lost or altered line would break an indicator.
#include "flash/FirmwareImage.hpp"

#include <gtest/gtest.h>

#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

Texts Lines(const ImageLines& image) {
    Texts lines;
    for (std::size_t i = 0; i <= image.UBound(); ++i) lines.emplace_back(image[i]);
    return lines;
}

TEST(FirmwareImage, NoLineEndMayCostOrAddALine) {
    const struct {
        const char* what;
        std::string text;
        Texts lines;
    } kCases[] = {
        {"both in one file", "a\r\nb\nc\r\n", {"a", "b", "c"}},
        {"no end behind the last line", "a\nb", {"a", "b"}},
        {"a lone carriage return at the end", "a\nb\r", {"a", "b\r"}},
        {"carriage returns only", "a\rb\rc", {"a\rb\rc"}},
        {"a double carriage return", "a\r\r\nb", {"a\r", "b"}},
        {"blank lines are kept", "\na\n\n  \n", {"", "a", "", "  "}},
        {"an empty file is one empty line", "", {""}},
        {"bytes that are no text", "a\0b\n\x1a\n\x80\xff"s, {"a\0b"s, "\x1a", "\x80\xff"}}};
    for (const auto& c : kCases) EXPECT_EQ(Lines(ImageLines(c.text)), c.lines) << c.what;
}

TEST(FirmwareImage, GrowingByAStepLosesNoLine) {
    for (const std::size_t count : {14999u, 15000u, 15001u, 15002u, 20000u, 20001u, 25001u}) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) text += "S2" + std::to_string(i) + "\r\n";
        ImageLines grown(std::move(text));
        const ImageLines image = std::move(grown);
        ASSERT_EQ(image.UBound(), count - 1);
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < count; ++i) wrong += image[i] != "S2" + std::to_string(i);
        EXPECT_EQ(wrong, 0u) << count;
        EXPECT_EQ(Raised([&] { static_cast<void>(image[count]); }).Number(), 9) << count;
    }
}

TEST(FirmwareImage, AMissingFileIsSilentAndAReadErrorIsReportedAndGivesNoHalfImage) {
    ReportingPlatform platform;
    const ImageLines image = FileToStringArray("/images/none.run", platform.files);
    EXPECT_FALSE(image.Sized());
    EXPECT_EQ(Raised([&] { static_cast<void>(image.UBound()); }).Number(), 9);
    EXPECT_EQ(Told(platform), Texts{});
    platform.files.Add("/images/m40.run", "S0\r\nS8\r\n");
    EXPECT_EQ(Lines(FileToStringArray("/images/m40.run", platform.files)), (Texts{"S0", "S8"}));
    platform.files.FailOn("/images/m40.run", 70);
    platform.files.MakeVanishing("/images/gone.run");
    EXPECT_FALSE(FileToStringArray("/images/m40.run", platform.files).Sized());
    EXPECT_FALSE(FileToStringArray("/images/gone.run", platform.files).Sized());
    EXPECT_EQ(Told(platform),
              (Texts{ReportBox("frmMain.FileToStringArray", "(70) Permission denied"),
                     ReportBox("frmMain.FileToStringArray", "(53) File not found")}));
}

}  // namespace
}  // namespace vantor
