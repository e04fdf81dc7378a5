// The progress window of a file transmission. A pixel around its two values stays free for
// the edges that the window draws.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kFileName = {.verbatim = true};
constexpr ControlStyle kCancel = {.defaultButton = true, .cancelButton = true};

constexpr ControlDesign kControls[] = {
    {Label, "lblLabels", 0, "", {180, 180, 1100, 270}, "Filename:", "602"},
    {Label, "lblLabels", 1, "", {180, 585, 1100, 270}, "Sending:", "603"},
    {Label, "lblFilename", kSingle, "", {1365, 180, 3300, 270}, "", "", kFileName},
    {Label, "lblStatus", kSingle, "", {1365, 585, 3300, 270}, "", ""},
    {CommandButton, "cmdCancel", kSingle, "", {1800, 1035, 1245, 375}, "&Cancel", "103", kCancel},
};

}  // namespace

const FormDesign kSendWindowDesign = {
    "frmSend", "Sending File", "601", {0, 0, 4935, 2025}, kControls};

}  // namespace vantor
