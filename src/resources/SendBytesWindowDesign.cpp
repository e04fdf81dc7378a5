// The box for bytes to send: the text and its form at the left, the result below them, buttons at
// the right.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kHistory = {.editable = true, .spokenName = Str::BytesName};
constexpr ControlStyle kSend = {.defaultButton = true};
constexpr ControlStyle kClose = {.cancelButton = true};

constexpr ControlDesign kControls[] = {
    {Label, "lblLabels", 0, "", {180, 240, 1395, 255}, "&Bytes:", "2401"},
    {ComboBox, "cboBytes", kSingle, "", {1635, 195, 4200, 345}, "", "", kHistory},
    {Label, "lblLabels", 1, "", {180, 705, 1395, 255}, "&Written as:", "2402"},
    {ComboBox, "cboForm", kSingle, "", {1635, 660, 2400, 345}, "", ""},
    {Label, "lblResult", kSingle, "", {180, 1170, 5655, 255}, "", ""},
    {CommandButton, "cmdSend", kSingle, "", {6015, 180, 1245, 375}, "&Send", "2405", kSend},
    {CommandButton, "cmdClose", kSingle, "", {6015, 645, 1245, 375}, "&Close", "2395", kClose},
};

}  // namespace

const FormDesign kSendBytesWindowDesign = {
    "frmSendBytes", "Send Bytes", "2400", {0, 0, 7530, 2145}, kControls};

}  // namespace vantor
