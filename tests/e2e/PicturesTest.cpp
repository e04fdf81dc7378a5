// The picture of the main window and its URL, and the report of the versions of the programs that
// are installed next to it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "resources/Version.h"
#include "tests/ProgramFile.hpp"
#include "tests/driver/PictureCache.hpp"
#include "tests/e2e/EndToEnd.hpp"

namespace vantor::driver {
namespace {

using Addresses = std::vector<std::string>;

class Pictures : public EndToEnd {
protected:
    RECT Place() const {
        RECT place{};
        GetWindowRect(app->Child("picPicture"), &place);
        return place;
    }

    /// The positions of the red and the blue half of a picture, within the picture's place.
    struct Halves {
        RECT red = {};
        RECT blue = {};
    };
    Halves Seen() const {
        const RECT place = Place();
        const Pixels pixels = OnScreen(place);
        Halves halves;
        for (LONG i = 0; i < static_cast<LONG>(pixels.size()); ++i) {
            const LONG x = i % (place.right - place.left);
            const LONG y = i / (place.right - place.left);
            const RECT here = {x, y, x + 1, y + 1};
            const std::uint32_t pixel = pixels[static_cast<std::size_t>(i)] & 0xF0F0F0u;
            if (pixel == 0xF00000u) UnionRect(&halves.red, &halves.red, &here);
            if (pixel == 0x0000F0u) UnionRect(&halves.blue, &halves.blue, &here);
        }
        return halves;
    }
    bool ShowsTheBuiltIn() const {
        const RECT place = Place();
        // The middle of the banner's left edge, in the start colour of its gradient.
        const RECT edge = {place.left + 2, place.bottom - 4, place.left + 3, place.bottom - 3};
        return OnScreen(edge).front() == 0x122B46u;
    }

    void Click() const { ClickIn(app->Child("picPicture"), 9, 9); }
    void ExpectOpened(const Addresses& wanted) const {
        Await("the address", [&] { return PictureCache::Opened().size() >= wanted.size(); });
        EXPECT_EQ(PictureCache::Opened(), wanted);
    }

    PictureCache cache;
};

TEST_F(Pictures, EachKindIsShownUndistortedAndAClickOpensItsAddress) {
    Addresses opened;
    const struct {
        const char* kind;
        int width;
        int height;
    } kRows[] = {{"gif", 200, 50}, {"jpg", 40, 160}, {"bmp", 900, 300}};
    for (const auto& row : kRows) {
        const std::string name = std::string("a.") + row.kind;
        cache.Clear();
        cache.Draw(name, row.kind, row.width, row.height);
        cache.Put("cache.txt", "1|2|other.gif|http://other/\r\n1|2|" + name + "|http://site/" +
                                   name + "?x=1&y=2|5\r\n");
        Restart();
        const RECT place = Place();
        // To within a pixel at each edge, where the colours blend into the background.
        Await(name + ", whole, in the middle and undistorted", [&] {
            const auto [red, blue] = Seen();
            const LONG across = blue.right - red.left;
            const LONG down = red.bottom - red.top;
            const bool fills =
                down >= place.bottom - place.top - 8 || across >= place.right - place.left - 8;
            return fills &&
                   std::abs(across * row.height - down * row.width) <=
                       2 * (row.width + row.height) &&
                   std::abs(red.right - blue.left) <= 2 &&
                   std::abs(red.left + blue.right - (place.right - place.left)) <= 4;
        });
        Click();
        opened.push_back("http://site/" + name + "?x=1&y=2");
        ExpectOpened(opened);
    }
}

TEST_F(Pictures, WhatIsNoPictureGivesWayToTheBuiltInOneWhichLeadsToTheMaker) {
    Addresses opened;
    for (const std::string name : {"A.GIF", "text.gif", "cut.jpg"}) {
        cache.Clear();
        if (name == "A.GIF") cache.Draw(name, "gif", 40, 20);
        if (name == "text.gif") cache.Put(name, "Not a picture\r\n");
        // Its header is intact, so only decoding detects the damage.
        if (name == "cut.jpg")
            cache.Put(name, std::string("\xFF\xD8\xFF\xC0\0\x11\x08\0\x10\0", 10));
        cache.Put("cache.txt", "1|2|" + name + "|http://wrong/\r\n");
        Restart();
        Await("the built-in picture instead of " + name, [this] { return ShowsTheBuiltIn(); });
        Click();
        opened.push_back("http:\\\\www.tessmar.example");
        ExpectOpened(opened);
        EXPECT_EQ(app->Dialog(), nullptr);
    }
}

TEST_F(Pictures, AnIndexThatSaysNothingOpensNothingAndAMissingOneIsReported) {
    cache.Draw("a.gif", "gif", 40, 20);
    Restart();
    Await("the picture", [this] { return Seen().red.right > 0; });
    Click();
    const Box box = app->TakeBox();
    EXPECT_EQ(box.icon, "critical");
    EXPECT_NE(box.text.find("frmMain.picPicture_Click"), std::string::npos) << box.text;
    EXPECT_NE(box.text.find("Error (9) Subscript out of range"), std::string::npos) << box.text;
    for (const char* nothing : {"1|2|a.gif\r\n", "1|2|A.GIF|http://case/\r\n", ""}) {
        cache.Put("cache.txt", nothing);
        Click();
        // Posted after the click, so the box shows that the click has been handled.
        app->Choose("mnuHelpAbout");
        PostMessageW(AwaitOtherForm(), WM_CLOSE, 0, 0);
        Await("its end", [this] { return app->OtherForm() == nullptr; });
    }
    // After a click that opens something, anything opened by earlier clicks would be recorded too.
    cache.Put("cache.txt", "a.gif|2|3\r\n1|2|aa.gif|http://longer/\r\n1|2|a.gif|http://own/");
    Click();
    ExpectOpened({"http://longer/"});
}

// The second release of the button hits the window after it has been maximised.
TEST_F(Pictures, ADoubleClickOnTheTitleBarOnlyMakesTheWindowLarge) {
    cache.Draw("a.gif", "gif", 40, 20);
    cache.Put("cache.txt", "1|2|a.gif|http://double-click/");
    Restart();
    SetWindowPos(app->Main(), nullptr, 100, 100, 640, 480, SWP_NOZORDER | SWP_NOACTIVATE);
    const POINT at = {300, 112};
    ASSERT_EQ(SendMessageW(app->Main(), WM_NCHITTEST, 0, MAKELPARAM(at.x, at.y)), HTCAPTION);
    ClickAt(at, 2);
    Await("the large window", [this] { return IsZoomed(app->Main()) != 0; });
    Await("the picture under the mouse",
          [&] { return WindowFromPoint(at) == app->Child("picPicture"); });
    app->AwaitInputTaken();
    // After a click that opens something, anything opened by the release would be recorded too.
    cache.Put("cache.txt", "1|2|a.gif|http://click/");
    Click();
    ExpectOpened({"http://click/"});
}

class Versions : public EndToEnd {
protected:
    ~Versions() override {
        app.reset();
        std::filesystem::remove_all(folder);
    }
    void Install(const char* name, const std::vector<std::string>& texts) const {
        std::ofstream(folder / name, std::ios::binary) << ProgramAround(VersionBlock(texts));
    }
    /// The report on a folder with padded, terminated, missing and misplaced versions,
    /// and after the help key in a terminal, for which there is no file in it.
    void ExpectTheReport(const std::string& noHelp) {
        std::filesystem::create_directories(folder);
        std::filesystem::copy_file(Setting("DRIVE_PROGRAM"), folder / "tsupdate.exe");
        Install("caldor.exe", {VersionText("ProductVersion", "9.9"),
                               VersionText("FileVersion", std::string("  3.14.1  \0\0x\0", 15))});
        Install("caldoredit.exe", {VersionText("ProductVersion", "9.9")});
        Install("pellin.exe", {VersionText("FileVersion", std::string("   \0", 4))});
        app.reset();
        app.emplace((folder / "tsupdate.exe").string());
        app->Choose("mnuToolsCurrentVersions");
        const Box wanted = {"Installed Software Version Information",
                            "Caldor Version: 3.14.1\r\nCaldor Editor Version: Unknown\r\n"
                            "Pellin Version: Unknown\r\nWeb Update Version: " VANTOR_VERSION "\r\n",
                            "information"};
        EXPECT_EQ(app->TakeBox(), wanted);
        const HWND terminal = OpenMonitor().WindowHandle();
        Await("the keyboard", [=] { return GetForegroundWindow() == terminal; });
        app->KeyUntil(VK_F1, "the box", [this] { return app->Dialog() != nullptr; });
        EXPECT_EQ(app->TakeBox(), (Box{"Tessmar Vantor Update", noHelp, "exclamation"}));
    }

    const std::filesystem::path folder = FileOfRun("installed");
};
using SpanishVersions = Versions;

TEST_F(Versions, OfFilesBesideTheProgramAreReported) {
    ExpectTheReport(
        "The help file was not found. Reinstall the application or call technical support for "
        "assistance.");
}

TEST_F(SpanishVersions, AreReportedTheSame) {
    ExpectTheReport(
        "No se encontró el archivo de ayuda. Vuelva a instalar la aplicación o llame al servicio "
        "de soporte técnico para obtener ayuda.");
}

}  // namespace
}  // namespace vantor::driver
