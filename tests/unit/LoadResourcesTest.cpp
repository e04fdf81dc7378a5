// Translation of windows with faulty designs; the translated windows themselves are scenarios.
#include "app/base/LoadResources.hpp"

#include <gtest/gtest.h>

#include "controls/Controls.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

// A row names the caption of the menu, the tags of label, button, picture and window.
TEST(LoadResources, MistakesEndItWhereTheyStandAndAreReportedUnderTheWindow) {
    ExpectTable("translation", [](const Words& words) {
        const auto row = [](ControlKind kind, const char* caption, const std::string& tag) {
            return ControlDesign{kind, caption, -1, "", {}, caption, tag.c_str()};
        };
        const std::array rows = {row(ControlKind::MenuItem, words.at(0).c_str(), ""),
                                 row(ControlKind::Label, "label", words.at(1)),
                                 row(ControlKind::PictureBox, "pic", words.at(3)),
                                 row(ControlKind::CommandButton, "button", words.at(2))};
        const FormDesign design = {"frmTest", "title", words.at(4).c_str(), {}, rows};
        ReportingPlatform platform;
        const auto window = std::make_shared<Form>(platform.manager, design);
        const MenuItem menu{*window, words[0]};
        const Label label{*window, "label"};
        const PictureBox picture{*window, "pic"};
        const CommandButton button{*window, "button"};
        window->Load();
        LoadResources(*window, platform.strings,
                      words.size() > 5 ? Translate::WithoutMenusAndTitle : Translate::All);
        std::string shown;
        for (const Control* control : window->Controls()) shown += control->Caption() + "|";
        shown += window->Caption();
        window->Unload();
        for (const std::string& box : Told(platform)) shown += "|" + box.substr(box.find('\n') + 1);
        return shown;
    });
}

}  // namespace
}  // namespace vantor
