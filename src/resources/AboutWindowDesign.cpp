// The About window: a logo at the left, texts beside it, the legal notice below.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kHeading = {.points = 12, .bold = true};
constexpr ControlStyle kOkStyle = {.cancelButton = true};
// It is also what Enter presses, so that OK has no default button's edge.
constexpr ControlStyle kFocusStyle = {
    .defaultButton = true, .holdsFocus = true, .spokenName = Str::ProgramTitle};

constexpr ControlDesign kControls[] = {
    {Icon, "imgLogo", kSingle, "", {240, 240, 960, 960}, "", ""},
    {Label, "lblTitle", kSingle, "", {1440, 240, 6300, 330}, "Title", "301", kHeading},
    {Label, "lblVersion", kSingle, "", {1440, 600, 3600, 270}, "", ""},
    {Label, "lblRelease", kSingle, "", {5040, 600, 2700, 270}, "", ""},
    {Label, "lblOwnership", 0, "", {1440, 930, 6300, 480}, "Ownership", "403"},
    {Label, "lblOwnership", 1, "", {1440, 1440, 6300, 480}, "Ownership", "404"},
    {Label, "lblDisclaimer", kSingle, "", {240, 2100, 7320, 1320}, "Disclaimer", "402"},
    {CommandButton, "cmdOK", kSingle, "", {6375, 3540, 1365, 405}, "OK", "101", kOkStyle},
    // Off-screen: it takes the initial focus, so that no button appears selected.
    {CommandButton, "cmdFocus", kSingle, "", {-1500, 0, 300, 300}, "", "", kFocusStyle},
};

}  // namespace

const FormDesign kAboutWindowDesign = {"frmAbout", "", "", {0, 0, 8070, 4620}, kControls};

}  // namespace vantor
