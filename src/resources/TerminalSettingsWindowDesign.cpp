// The terminal's own settings: what it sends at the left, what it does with what it receives at the
// right, each with a column of labels and a column of lists; OK and Cancel.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kOk = {.defaultButton = true};
constexpr ControlStyle kCancel = {.cancelButton = true};

constexpr float kFirstRow = 180;
constexpr float kRow = 420;
constexpr float kGroup = 5340;  // distance of the two groups

constexpr Place LabelAt(int group, int row) {
    return {180 + kGroup * static_cast<float>(group),
            kFirstRow + 45 + kRow * static_cast<float>(row), 2700, 255};
}

constexpr Place ListAt(int group, int row) {
    return {2940 + kGroup * static_cast<float>(group), kFirstRow + kRow * static_cast<float>(row),
            2250, 345};
}

constexpr Place ButtonAt(int column) {
    return {7905 + 1380 * static_cast<float>(column), 2835, 1245, 375};
}

// Each label precedes its list, which gets the focus from the label's accelerator.
constexpr ControlDesign kControls[] = {
    {Label, "lblLabels", 0, "", LabelAt(0, 0), "E&nter sends:", "2352"},
    {ComboBox, "cboEnterKey", kSingle, "", ListAt(0, 0), "", ""},
    {Label, "lblLabels", 1, "", LabelAt(0, 1), "&Backspace sends:", "2353"},
    {ComboBox, "cboBackspaceKey", kSingle, "", ListAt(0, 1), "", ""},
    {Label, "lblLabels", 2, "", LabelAt(0, 2), "Pa&use key sends a break:", "2359"},
    {ComboBox, "cboBreakKey", kSingle, "", ListAt(0, 2), "", ""},
    {Label, "lblLabels", 3, "", LabelAt(0, 3), "&Local echo:", "2354"},
    {ComboBox, "cboLocalEcho", kSingle, "", ListAt(0, 3), "", ""},
    {Label, "lblLabels", 4, "", LabelAt(0, 4), "&Paste:", "2355"},
    {ComboBox, "cboPastePace", kSingle, "", ListAt(0, 4), "", ""},
    {Label, "lblLabels", 5, "", LabelAt(0, 5), "Ask before a lon&g paste:", "2356"},
    {ComboBox, "cboLongPaste", kSingle, "", ListAt(0, 5), "", ""},
    {Label, "lblLabels", 6, "", LabelAt(1, 0), "Character &encoding:", "2351"},
    {ComboBox, "cboEncoding", kSingle, "", ListAt(1, 0), "", ""},
    {Label, "lblLabels", 7, "", LabelAt(1, 1), "New line on received C&R:", "2357"},
    {ComboBox, "cboReturnFeeds", kSingle, "", ListAt(1, 1), "", ""},
    {Label, "lblLabels", 8, "", LabelAt(1, 2), "Answer device &queries:", "2358"},
    {ComboBox, "cboAnswers", kSingle, "", ListAt(1, 2), "", ""},
    {Label, "lblLabels", 9, "", LabelAt(1, 3), "Control c&haracters as:", "2362"},
    {ComboBox, "cboNotation", kSingle, "", ListAt(1, 3), "", ""},
    {Label, "lblLabels", 10, "", LabelAt(1, 4), "&Time stamps in captures:", "2361"},
    {ComboBox, "cboCaptureStamps", kSingle, "", ListAt(1, 4), "", ""},
    {Label, "lblLabels", 11, "", LabelAt(1, 5), "Reopen a lo&st port:", "2360"},
    {ComboBox, "cboReopens", kSingle, "", ListAt(1, 5), "", ""},
    {CommandButton, "cmdOK", kSingle, "", ButtonAt(0), "&OK", "101", kOk},
    {CommandButton, "cmdCancel", kSingle, "", ButtonAt(1), "&Cancel", "103", kCancel},
};

}  // namespace

const FormDesign kTerminalSettingsWindowDesign = {
    "frmTerminalSettings", "Terminal Settings", "2350", {0, 0, 10800, 3840}, kControls};

}  // namespace vantor
