// The interface of a flash session to its window: a few controls, three flags, and the commands of
// the window. The session knows no window class.
#pragma once

#include <cstdint>

#include "controls/Controls.hpp"
#include "controls/SerialControl.hpp"

namespace vantor {

/// The only channel from the window's handlers to the running session.
struct FlashFlags {
    bool mblnFlashing = false;        ///< a session is in progress
    bool mblnAbortFlash = false;      ///< the user pressed the abort button
    bool mblnCloseRequested = false;  ///< the user tried to close the window during it
};

/// The panels of the main window, of which one is visible.
enum class MainPanel : std::uint8_t { Startup, Update, Flash };

/// The controls that the session drives.
struct FlashControls {
    Label& lblStatus;
    Label& lblElapsed;
    Label& lblWarning;
    ProgressBar& pbarStatus;
    CommandButton& cmdFlashAbort;
    Timer& tmrFlashTimeout;
    SerialControl& mobjComm;
};

class FlashHost {
public:
    virtual ~FlashHost() = default;

    /// The owner window of the message boxes. Every wait ends once it is unloaded.
    virtual Form& Window() = 0;
    virtual FlashControls SessionControls() = 0;
    virtual FlashFlags& Flags() = 0;

    virtual void ShowFunction(MainPanel panel) = 0;
    virtual void EnableButtons(bool enabled) = 0;
    /// The File Exit command: unloads the window.
    virtual void mnuFileExit_Click() = 0;
};

}  // namespace vantor
