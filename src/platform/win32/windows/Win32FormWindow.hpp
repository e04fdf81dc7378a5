// The window of one form: its children, its menu bar, and the routing of window messages to
// the model.
#pragma once

#include <memory>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"

namespace vantor {

/// Creates the peer of `form` with its window, hidden and centred on the screen, where a window
/// first shown minimised or maximised is restored to. `pump` runs the loop of a modal window.
/// Raises RuntimeError 7 when the system cannot create it.
std::unique_ptr<FormPeer> MakeFormPeer(Win32Context& context, Win32MessagePump& pump, Form& form);

}  // namespace vantor
