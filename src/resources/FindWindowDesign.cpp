// The box for a search in the terminal's text: text and letter case at the left, the result below
// them, buttons at the right.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kHistory = {.editable = true, .spokenName = Str::FindTextName};
constexpr ControlStyle kNext = {.defaultButton = true};
constexpr ControlStyle kClose = {.cancelButton = true};

constexpr Place ButtonAt(int row) {
    return {5745, 180 + 465 * static_cast<float>(row), 1755, 375};
}

// Each label precedes its list, which gets the focus from the label's accelerator.
constexpr ControlDesign kControls[] = {
    {Label, "lblLabels", 0, "", {180, 240, 1995, 255}, "&Text:", "2391"},
    {ComboBox, "cboText", kSingle, "", {2235, 195, 3330, 345}, "", "", kHistory},
    {Label, "lblLabels", 1, "", {180, 705, 1995, 255}, "&Match case:", "2392"},
    {ComboBox, "cboMatchCase", kSingle, "", {2235, 660, 1200, 345}, "", ""},
    {Label, "lblResult", kSingle, "", {180, 1170, 5385, 255}, "", ""},
    {CommandButton, "cmdNext", kSingle, "", ButtonAt(0), "Find &Next", "2393", kNext},
    {CommandButton, "cmdPrevious", kSingle, "", ButtonAt(1), "Find &Previous", "2394"},
    {CommandButton, "cmdClose", kSingle, "", ButtonAt(2), "&Close", "2395", kClose},
};

}  // namespace

const FormDesign kFindWindowDesign = {"frmFind", "Find", "2390", {0, 0, 7770, 2145}, kControls};

}  // namespace vantor
