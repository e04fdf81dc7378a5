// Message boxes and the system beep.
#pragma once

#include <cstdint>
#include <string>

namespace vantor {

using NativeWindow = std::uintptr_t;  ///< a window handle of the platform; 0 is none

enum class BoxIcon : std::uint8_t { None, Critical, Question, Exclamation, Information };
enum class BoxButtons : std::uint8_t { Ok, YesNo, YesNoCancel };
enum class BoxAnswer : std::uint8_t { Ok, Yes, No, Cancel };

struct MessageBoxRequest {
    std::string text;
    std::string title{};  ///< empty: the application's title
    BoxIcon icon = BoxIcon::None;
    BoxButtons buttons = BoxButtons::Ok;
    /// The owner window, disabled while the box is open. 0, for code that knows no window: the
    /// program's active window, if any; all other windows are then disabled as well.
    NativeWindow owner = 0;
    bool declinesByDefault = false;  ///< the default button is No, not Yes
};

class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;

    /// Shows a modal box and returns the user's answer (MessageBoxW).
    /// Events are delivered meanwhile. A box that cannot be shown returns the declining answer:
    /// No, Cancel, or Ok where there is no other.
    virtual BoxAnswer Show(const MessageBoxRequest& request) = 0;

    /// The default system sound (MessageBeep).
    virtual void Beep() = 0;
};

}  // namespace vantor
