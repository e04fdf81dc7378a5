// The designs of the program's windows: one table per window, in the order in which its class
// declares the controls. Positions are twips. Captions that begin with a number, and tags,
// are the number of the text that replaces the caption when the window loads.
#pragma once

#include "controls/Form.hpp"

namespace vantor {

extern const FormDesign kAboutWindowDesign;
extern const FormDesign kConfigureWindowDesign;
extern const FormDesign kFindWindowDesign;
extern const FormDesign kMainWindowDesign;
extern const FormDesign kMonitorWindowDesign;
extern const FormDesign kPortSettingsWindowDesign;
extern const FormDesign kSendBytesWindowDesign;
extern const FormDesign kSendWindowDesign;
extern const FormDesign kStatusWindowDesign;
extern const FormDesign kTerminalSettingsWindowDesign;

}  // namespace vantor
