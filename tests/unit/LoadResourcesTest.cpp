// Translation of windows with faulty designs; the translated windows themselves are scenarios.
#include "app/base/LoadResources.hpp"

#include <gtest/gtest.h>

#include "app/frmMain.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

// A window with the captions and tags that a test needs.
class Annotated : public Form {
public:
    struct Design {
        const char* menu = "201 &File";
        const char* labelTag = "101";
        const char* buttonTag = "102";
        const char* pictureTag = "";
        const char* windowTag = "301";
    };

    Annotated(ReportingPlatform& platform, const Design& design)
        : Form(platform.manager, mDesign),
          mRows{ControlDesign{ControlKind::MenuItem, "mnu", -1, "", {}, design.menu, ""},
                ControlDesign{ControlKind::Label, "lbl", -1, "", {}, "label", design.labelTag},
                ControlDesign{ControlKind::PictureBox, "pic", -1, "", {}, "pic", design.pictureTag},
                ControlDesign{
                    ControlKind::CommandButton, "cmd", -1, "", {}, "button", design.buttonTag}},
          mDesign{"frmTest", "title", design.windowTag, {}, mRows} {}

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

TEST(LoadResources, MistakesEndItWhereTheyStandAndAreReportedUnderTheWindow) {
    const std::string kWell = "|&OK|pic|&Close|Tessmar Vantor Update Utility";
    const std::string kUntouched = "|label|pic|button|title";
    const struct {
        Annotated::Design design;
        std::string captions;
        const char* error = nullptr;  // as shown in its box
    } kCases[] = {{{}, "&File" + kWell},
                  {{.menu = "  803x Communications"}, "&Communications" + kWell},
                  {{.menu = "-"}, "-" + kWell},
                  {{.menu = "&9 Lives"}, "&9 Lives" + kWell},
                  {{.menu = "0 None"}, "0 None" + kWell},
                  {{.labelTag = "", .buttonTag = "", .windowTag = ""}, "&File" + kUntouched},
                  {{.pictureTag = "a note of its own"}, "&File" + kWell},
                  {{.buttonTag = "102 Close"}, "&File|&OK|pic|button|title", "(13) Type mismatch"},
                  {{.labelTag = "815"},
                   "&File" + kUntouched,
                   "(326) Resource with identifier '815' not found"},
                  {{.menu = "1003 x"},
                   "1003 x" + kUntouched,
                   "(326) Resource with identifier '1003' not found"},
                  {{.windowTag = "x"}, "&File|&OK|pic|&Close|title", "(13) Type mismatch"}};
    for (const auto& c : kCases) {
        ReportingPlatform platform;
        const auto window = std::make_shared<Annotated>(platform, c.design);
        window->Load();
        LoadResources(*window, platform.strings);
        EXPECT_EQ(window->Captions(), c.captions);
        EXPECT_EQ(Told(platform),
                  c.error ? Texts{ReportBox("frmTest.LoadResources", c.error)} : Texts{})

            << c.captions;
    }
}

TEST(LoadResources, AWindowThatKeepsItsMenusAndTitleLosesNeither) {
    ReportingPlatform platform;
    const auto window = std::make_shared<Annotated>(platform, Annotated::Design{.windowTag = "x"});
    window->Load();
    LoadResources(*window, platform.strings, Translate::WithoutMenusAndTitle);
    EXPECT_EQ(window->Captions(), "201 &File|&OK|pic|&Close|title");
    EXPECT_EQ(Told(platform), Texts{});
}

}  // namespace
}  // namespace vantor
