// The terminal's settings dialog: a column of labels, a column of lists, OK and Cancel.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kOk = {.defaultButton = true};
constexpr ControlStyle kSpeed = {.editable = true};
constexpr ControlStyle kCancel = {.cancelButton = true};

constexpr float kFirstRow = 180;
constexpr float kRow = 420;

constexpr Place LabelAt(int row) {
    return {180, kFirstRow + 45 + kRow * static_cast<float>(row), 1950, 255};
}

constexpr Place ListAt(int row) {
    return {2190, kFirstRow + kRow * static_cast<float>(row), 3000, 345};
}

// Each label precedes its list, which gets the focus from the label's accelerator.
constexpr ControlDesign kControls[] = {
    {Label, "lblLabels", 0, "", LabelAt(0), "&Port:", "2111"},
    {ComboBox, "cboPort", kSingle, "", ListAt(0), "", ""},
    {Label, "lblLabels", 1, "", LabelAt(1), "&Speed (bit/s):", "2112"},
    {ComboBox, "cboSpeed", kSingle, "", ListAt(1), "", "", kSpeed},
    {Label, "lblLabels", 2, "", LabelAt(2), "P&arity:", "2113"},
    {ComboBox, "cboParity", kSingle, "", ListAt(2), "", ""},
    {Label, "lblLabels", 3, "", LabelAt(3), "&Data bits:", "2114"},
    {ComboBox, "cboDataBits", kSingle, "", ListAt(3), "", ""},
    {Label, "lblLabels", 4, "", LabelAt(4), "S&top bits:", "2115"},
    {ComboBox, "cboStopBits", kSingle, "", ListAt(4), "", ""},
    {Label, "lblLabels", 5, "", LabelAt(5), "&Flow control:", "2116"},
    {ComboBox, "cboFlowControl", kSingle, "", ListAt(5), "", ""},
    {CommandButton, "cmdOK", kSingle, "", {2565, 2835, 1245, 375}, "&OK", "101", kOk},
    {CommandButton, "cmdCancel", kSingle, "", {3945, 2835, 1245, 375}, "&Cancel", "103", kCancel},
};

}  // namespace

const FormDesign kPortSettingsWindowDesign = {
    "frmPortSettings", "Port Settings", "2110", {0, 0, 5460, 3840}, kControls};

}  // namespace vantor
