// Translation of windows with faulty designs; the translated windows themselves are scenarios.
#include "app/base/LoadResources.hpp"

#include <gtest/gtest.h>

#include "controls/Controls.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

/// A window with the captions and tags that a row names.
class Annotated : public Form {
public:
    /// `marks`: the caption of the menu, the tags of label, button, picture and window.
    Annotated(ReportingPlatform& platform, Words marks)
        : Form(platform.manager, mDesign),
          mMarks(std::move(marks)),
          mRows{ControlDesign{ControlKind::MenuItem, "mnu", -1, "", {}, mMarks.at(0).c_str(), ""},
                ControlDesign{ControlKind::Label, "lbl", -1, "", {}, "label", mMarks.at(1).c_str()},
                ControlDesign{
                    ControlKind::PictureBox, "pic", -1, "", {}, "pic", mMarks.at(3).c_str()},
                ControlDesign{
                    ControlKind::CommandButton, "cmd", -1, "", {}, "button", mMarks.at(2).c_str()}},
          mDesign{"frmTest", "title", mMarks.at(4).c_str(), {}, mRows} {}

    std::string Captions() const {
        return mnu.Caption() + "|" + lbl.Caption() + "|" + pic.Caption() + "|" + cmd.Caption() +
               "|" + Caption();
    }

    MenuItem mnu{*this, "mnu"};
    Label lbl{*this, "lbl"};
    PictureBox pic{*this, "pic"};
    CommandButton cmd{*this, "cmd"};

private:
    Words mMarks;
    std::array<ControlDesign, 4> mRows;
    FormDesign mDesign;
};

TEST(LoadResources, MistakesEndItWhereTheyStandAndAreReportedUnderTheWindow) {
    ExpectTable("translation", [](const Words& words) {
        ReportingPlatform platform;
        const auto window = std::make_shared<Annotated>(platform, words);
        window->Load();
        LoadResources(*window, platform.strings,
                      words.size() > 5 ? Translate::WithoutMenusAndTitle : Translate::All);
        std::string shown = window->Captions();
        for (const std::string& box : Told(platform)) shown += "|" + box.substr(box.find('\n') + 1);
        return shown;
    });
}

}  // namespace
}  // namespace vantor
