// Native windows for forms, and the mouse pointer. The control model works without any peer.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/MessageBoxes.hpp"

namespace vantor {

class Control;
class Form;

enum class MousePointer : std::uint8_t { Default = 0, Hourglass = 11 };

/// The property of a control that changed, for its peer to update.
enum class Property : std::uint8_t {
    Caption,
    Enabled,
    Visible,
    ToolTip,
    SpokenName,
    Place,
    State,  ///< of a form: normal, minimised, maximised
    Border,
    Value,
    ZOrder,   ///< brought to the front
    Repaint,  ///< draw now, even while the caller blocks the message loop
};

/// A size in twips.
struct Size {
    float width = 0;
    float height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

/// Position and size in twips (1440 to the inch). A control's is relative to its container.
struct Place {
    float left = 0;
    float top = 0;
    float width = 0;
    float height = 0;

    friend bool operator==(const Place&, const Place&) = default;
};

/// Colours that the user chooses for the whole system.
enum class SystemColour : std::uint8_t { ButtonShadow, Highlight3D };

/// A line one pixel wide, in twips of a form's client area; both end points are included.
struct ThinLine {
    float left = 0;
    float top = 0;
    float right = 0;
    float bottom = 0;
    SystemColour colour = SystemColour::ButtonShadow;

    friend bool operator==(const ThinLine&, const ThinLine&) = default;
};

/// How a form is shown.
enum class ShowMode : std::uint8_t { Modeless, Modal };

/// The native window of one form; destroyed when the form unloads.
class FormPeer {
public:
    virtual ~FormPeer() = default;

    /// Shows the window; a modal one returns only when it has been unloaded.
    virtual void Show(ShowMode mode, NativeWindow owner) = 0;

    /// `property` of the form itself changed.
    virtual void FormChanged(Property property) = 0;

    /// `property` of one of its controls changed.
    virtual void ControlChanged(const Control& control, Property property) = 0;

    /// Draws on the form itself, below its controls. Only valid inside the form's `Painting`.
    virtual void DrawLine(const ThinLine&) {}

    /// Size of a text as the control draws it in the typeface `face`; all 0 where nothing is drawn.
    virtual Size TextSize(const Control&, const std::string& /*face*/,
                          const std::string& /*text*/) const {
        return {};
    }

    /// Outer size of a terminal that shows so many cells; all 0 where nothing is drawn.
    virtual Size TerminalSize(const Control&, int /*columns*/, int /*rows*/) const { return {}; }

    /// Position and outer size of the window in its normal state, neither minimised nor maximised;
    /// nothing where nothing is drawn.
    virtual std::optional<Place> NormalPlace() const { return std::nullopt; }

    /// The window's handle; 0 where nothing is drawn.
    virtual NativeWindow WindowHandle() const = 0;
};

/// Creates peers. Used from one thread.
class Peers {
public:
    virtual ~Peers() = default;

    /// Creates the peer of `form`, hidden until shown. The form outlives it.
    virtual std::unique_ptr<FormPeer> Draw(Form& form) = 0;

    /// Size of the screen that holds the windows.
    virtual Size ScreenSize() const = 0;

    /// Work area (without taskbar) of the monitor that contains `place` or is nearest to it.
    virtual Place WorkArea(const Place& /*place*/) const {
        const Size screen = ScreenSize();
        return {0, 0, screen.width, screen.height};
    }

    /// Twips of one pixel of the screen: 15 at 96 dots to the inch.
    virtual float TwipsPerPixel() const { return 15; }

    /// Sets the pointer of the whole screen until the next call.
    virtual void SetMousePointer(MousePointer pointer) = 0;

    /// While `reason` is not empty, requests that the system stay awake and blocks shutdown and
    /// log-off; the system shows `reason`. An empty `reason` ends both.
    virtual void HoldSystem(const std::string& reason) = 0;
};

}  // namespace vantor
