// The options dialog: the tree of pages at the left; at the right a caption bar above the pages,
// which all have the position of the placeholder; below them OK, Cancel and Apply.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kTree = {.spokenName = Str::OptionsTitle};
constexpr ControlStyle kHeading = {.bold = true};
constexpr ControlStyle kCaptionBar = {.points = 11, .bold = true, .ground = Ground::CaptionBar};
constexpr ControlStyle kOk = {.defaultButton = true};
constexpr ControlStyle kCancel = {.cancelButton = true};

constexpr Place kPage = {2700, 645, 4740, 3015};

constexpr float kFirstRow = 690;
constexpr float kRow = 435;

constexpr Place LabelAt(int row) {
    return {240, kFirstRow + 45 + kRow * static_cast<float>(row), 2100, 255};
}

constexpr Place ListAt(int row) {
    return {2400, kFirstRow + kRow * static_cast<float>(row), 2100, 345};
}

constexpr Place ButtonAt(int column) {
    return {3435 + 1380 * static_cast<float>(column), 3855, 1245, 375};
}

constexpr ControlDesign kControls[] = {
    {TreeView, "tvwOptions", kSingle, "", {180, 180, 2340, 3480}, "", "", kTree},
    {PictureBox, "picSelection", kSingle, "", {2700, 180, 4740, 390}, "", "", kCaptionBar},

    {PictureBox, "picDetails", kSingle, "", kPage, "", ""},
    {Label, "lblDetails", kSingle, "picDetails", {240, 240, 4260, 600}, "Details", "502"},

    {PictureBox, "picHolder", 0, "", kPage, "", ""},
    {Label, "lblLabels", 0, "picHolder", {240, 240, 4260, 255}, "Settings:", "503", kHeading},
    {Label, "lblLabels", 1, "picHolder", LabelAt(0), "PC Comm Port", "504"},
    {ComboBox, "cboPort", kSingle, "picHolder", ListAt(0), "", ""},
    {Label, "lblLabels", 2, "picHolder", LabelAt(1), "Baud Rate", "505"},
    {ComboBox, "cboBaudRate", kSingle, "picHolder", ListAt(1), "", ""},
    {Label, "lblLabels", 3, "picHolder", LabelAt(2), "Data Bits", "506"},
    {ComboBox, "cboDataBits", kSingle, "picHolder", ListAt(2), "", ""},
    {Label, "lblLabels", 4, "picHolder", LabelAt(3), "Parity", "507"},
    {ComboBox, "cboParity", kSingle, "picHolder", ListAt(3), "", ""},
    {Label, "lblLabels", 5, "picHolder", LabelAt(4), "Stop Bits", "508"},
    {ComboBox, "cboStopBits", kSingle, "picHolder", ListAt(4), "", ""},

    {CommandButton, "cmdOK", kSingle, "", ButtonAt(0), "&OK", "101", kOk},
    {CommandButton, "cmdCancel", kSingle, "", ButtonAt(1), "&Cancel", "103", kCancel},
    {CommandButton, "cmdApply", kSingle, "", ButtonAt(2), "&Apply", "104"},
};

}  // namespace

const FormDesign kConfigureWindowDesign = {
    "frmConfigure", "Options", "501", {0, 0, 7710, 4845}, kControls};

}  // namespace vantor
