// Program start: the error handler first, then the single-instance check, then the main window.
#pragma once

#include <memory>
#include <string>

#include "app/base/CErrHandler.hpp"
#include "controls/Form.hpp"
#include "platform/Platform.hpp"

namespace vantor {

class frmMain;

/// The program's globals. After `Main` the program runs in the main window's events:
/// the caller runs the message pump, which ends when the last window has closed.
class modStartup {
public:
    explicit modStartup(Platform& platform);
    ~modStartup();
    modStartup(const modStartup&) = delete;
    modStartup& operator=(const modStartup&) = delete;

    /// Initialises the process and shows the main window. False when no window is open afterwards
    /// and the program must exit: another instance is running, creating the window failed
    /// (reported), or the user closed it while a start-up message box was open.
    bool Main();

    CErrHandler& Errors() { return mErrors; }
    const std::shared_ptr<frmMain>& MainWindow() const { return mMain; }

private:
    void ShowHelp(NativeWindow owner);

    Platform& mPlatform;
    CErrHandler mErrors;
    WindowManager mManager;
    std::shared_ptr<frmMain> mMain;
    std::string mHelpFile;
};

}  // namespace vantor
