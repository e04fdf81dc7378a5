// The status window: one message, a picture, and an OK button below the short height.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kOk = {.defaultButton = true, .cancelButton = true};

constexpr ControlDesign kControls[] = {
    {Icon, "Image1", kSingle, "", {150, 120, 480, 480}, "", ""},
    {Label, "lblMessage", kSingle, "", {780, 240, 3600, 480}, "", ""},
    {CommandButton, "cmdOK", kSingle, "", {1650, 780, 1215, 375}, "&OK", "101", kOk},
};

}  // namespace

const FormDesign kStatusWindowDesign = {
    "frmStatus", "Tessmar Vantor Update", "", {0, 0, 4590, 1800}, kControls};

}  // namespace vantor
