// Translating windows in place: the shipped main window in both languages, and designs with
// mistakes in them.
#include "app/base/LoadResources.hpp"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

#include "ReportingPlatform.hpp"
#include "app/frmMain.hpp"

namespace vantor {
namespace {

std::shared_ptr<frmMain> MainWindow(ReportingPlatform& platform, Desktop& desktop) {
    auto window = std::make_shared<frmMain>(desktop, platform.platform);
    window->Load();
    EXPECT_TRUE(platform.boxes.shown.empty());
    return window;
}

struct CaptionCase {
    const char* name;
    int index;
    const char* english;
    const char* spanish;
};

TEST(LoadResources, EveryAnnotatedCaptionOfTheMainWindowIsReplacedInBothLanguages) {
    constexpr CaptionCase kCases[] = {
        {"mnuFile", -1, "&File", "Archivo"},
        {"mnuFileFlash", -1, "&Update Indicator...", "&Actualizar indicador..."},
        {"mnuFileBar1", -1, "-", "-"},
        {"mnuFileExit", -1, "E&xit", "Salir"},
        {"mnuTools", -1, "&Tools", "Herramientas"},
        {"mnuToolsOptions", -1, "&Options...", "Opciones"},
        {"mnuToolsMonitor", -1, "&Monitor Mode...", "Modo &monitor..."},
        {"mnuToolsCurrentVersions", -1, "Show Current Version Info", "Show Current Version Info"},
        {"mnuHelp", -1, "&Help", "Ayuda"},
        {"mnuHelpAbout", -1, "&About...", "Sobre..."},
        {"cmdFlash", -1, "Update Indicator", "Actualizar indicador"},
        {"cmdDetails", -1, "View Details", "Ver detalles"},
        {"cmdDownload", -1, "Get Selected", "Obtener selección"},
        {"cmdDownloadAll", -1, "Get All", "Obtener todas"},
        {"cmdFlashAbort", -1, "&Abort", "A&nular"},
        {"lblLabels", 0,
         "Welcome to the Tessmar Vantor Update utility. This program updates the firmware on the "
         "Vantor digital indicators.Click below to begin.",
         "Bienvenido a la utilidad de actualización Tessmar Vantor. Este programa actualiza el "
         "firmware de los indicadores digitales Vantor. Haga clic abajo para comenzar."},
        {"lblLabels", 1, "Available Updates", "Actualizaciones disponibles"},
        {"lblLabels", 2, "Sending:", "Enviando:"},
        {"lblLabels", 3, "Elapsed Time:", "Tiempo transcurrido:"},
        {"lblStatus", -1, "", ""},
        {"lblWarning", -1, "", ""}};
    for (const Language language : {Language::English, Language::Spanish}) {
        const bool english = language == Language::English;
        ReportingPlatform platform(language);
        Desktop desktop(platform.peers, platform.pump);
        const auto window = MainWindow(platform, desktop);
        for (const CaptionCase& c : kCases) {
            const Control* found = nullptr;
            for (const Control* control : window->Controls())
                if (control->Name() == c.name && control->Index() == c.index) found = control;
            ASSERT_NE(found, nullptr) << c.name;
            EXPECT_EQ(found->Caption(), english ? c.english : c.spanish) << c.name;
        }
        EXPECT_EQ(window->Caption(), english ? "Tessmar Vantor Update Utility"
                                             : "Utilidad de actualización Tessmar Vantor");
        EXPECT_EQ(window->picPicture.ToolTip(),
                  english ? "Visit our World Wide Web site for more information."
                          : "Visite nuestro sitio web para obtener más información.");
        window->Unload();
    }
}

// A window of captions and tags as a test wants them.
class Annotated : public Form {
public:
    struct Texts {
        const char* menu = "201 &File";
        const char* firstTag = "101";
        const char* secondTag = "102";
        const char* pictureTag = "";
        const char* windowTag = "301";
    };

    Annotated(Desktop& desktop, const Texts& texts)
        : Form(desktop, mDesign),
          mRows{ControlDesign{ControlKind::MenuItem, "mnu", -1, "", {}, texts.menu, ""},
                ControlDesign{ControlKind::Label, "lbl", -1, "", {}, "label", texts.firstTag},
                ControlDesign{ControlKind::PictureBox, "pic", -1, "", {}, "pic", texts.pictureTag},
                ControlDesign{
                    ControlKind::CommandButton, "cmd", -1, "", {}, "button", texts.secondTag}},
          mDesign{"frmTest", "title", texts.windowTag, {}, mRows} {}

    std::string Captions() const {
        return mnu.Caption() + "|" + lbl.Caption() + "|" + pic.Caption() + "|" + cmd.Caption() +
               "|" + Caption();
    }

    MenuItem mnu{*this, "mnu"};
    Label lbl{*this, "lbl"};
    PictureBox pic{*this, "pic"};
    CommandButton cmd{*this, "cmd"};

private:
    std::array<ControlDesign, 4> mRows;
    FormDesign mDesign;
};

struct AnnotatedCase {
    const char* what;
    Annotated::Texts texts;
    const char* captions;
    const char* error;  // as its box says it; null when all is well
};

TEST(LoadResources, MistakesEndItWhereTheyStandAndAreReportedUnderTheWindow) {
    // clang-format off
    const AnnotatedCase kCases[] = {
        {"all is well", {}, "&File|&OK|pic|&Close|Tessmar Vantor Update Utility", nullptr},
        {"words behind the number", {.menu = "  803x Communications"},
         "&Communications|&OK|pic|&Close|Tessmar Vantor Update Utility", nullptr},
        {"a separator", {.menu = "-"}, "-|&OK|pic|&Close|Tessmar Vantor Update Utility", nullptr},
        {"no number in front", {.menu = "&9 Lives"},
         "&9 Lives|&OK|pic|&Close|Tessmar Vantor Update Utility", nullptr},
        {"number 0", {.menu = "0 None"},
         "0 None|&OK|pic|&Close|Tessmar Vantor Update Utility", nullptr},
        {"no tags", {.firstTag = "", .secondTag = "", .windowTag = ""},
         "&File|label|pic|button|title", nullptr},
        {"a picture's tag is its own", {.pictureTag = "not a number"},
         "&File|&OK|pic|&Close|Tessmar Vantor Update Utility", nullptr},
        {"a bad tag", {.secondTag = "102 Close"},
         "&File|&OK|pic|button|title", "(13) Type mismatch"},
        {"a missing text", {.firstTag = "815"},
         "&File|label|pic|button|title", "(326) Resource with identifier '815' not found"},
        {"a menu's missing text", {.menu = "1003 x"},
         "1003 x|label|pic|button|title", "(326) Resource with identifier '1003' not found"},
        {"a bad window tag", {.windowTag = "x"},
         "&File|&OK|pic|&Close|title", "(13) Type mismatch"},
    };
    // clang-format on
    for (const AnnotatedCase& c : kCases) {
        ReportingPlatform platform;
        Desktop desktop(platform.peers, platform.pump);
        const auto window = std::make_shared<Annotated>(desktop, c.texts);
        window->Load();
        LoadResources(*window, platform.strings);
        EXPECT_EQ(window->Captions(), c.captions) << c.what;
        ASSERT_EQ(platform.boxes.shown.size(), c.error ? 1u : 0u) << c.what;
        if (c.error) {
            EXPECT_EQ(platform.boxes.shown[0].text, ReportBox("frmTest.LoadResources", c.error));
        }
    }
}

TEST(LoadResources, AWindowThatKeepsItsMenusAndTitleLosesNeither) {
    ReportingPlatform platform;
    Desktop desktop(platform.peers, platform.pump);
    const auto window = std::make_shared<Annotated>(desktop, Annotated::Texts{.windowTag = "x"});
    window->Load();
    LoadResources(*window, platform.strings, Translate::WithoutMenusAndTitle);
    EXPECT_EQ(window->Captions(), "201 &File|&OK|pic|&Close|title");
    EXPECT_TRUE(platform.boxes.shown.empty());
}

}  // namespace
}  // namespace vantor
