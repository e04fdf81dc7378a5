// The window of a flash session in a console program: the controls that the session
// needs, and nothing else.
#pragma once

#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "flash/FlashHost.hpp"
#include "platform/Platform.hpp"

namespace vantor {

class ConsoleWindow : public Form, public FlashHost {
public:
    ConsoleWindow(WindowManager& manager, Platform& platform);

    Form& Window() override { return *this; }
    FlashControls SessionControls() override;
    FlashFlags& Flags() override { return mFlags; }
    // There are no panels and no buttons except those of the session.
    void ShowFunction(MainPanel) override {}
    void EnableButtons(bool) override {}
    void mnuFileExit_Click() override { Unload(); }

    Label lblStatus{*this, "lblStatus"};
    Label lblElapsed{*this, "lblElapsed"};
    Label lblWarning{*this, "lblWarning"};
    ProgressBar pbarStatus{*this, "pbarStatus"};
    CommandButton cmdFlashAbort{*this, "cmdFlashAbort"};
    Timer tmrFlashTimeout;
    SerialControl mobjComm;

protected:
    /// The interrupt key has no effect before the session enables its button.
    void Form_Load() override { cmdFlashAbort.Enabled(false); }

private:
    FlashFlags mFlags;
};

}  // namespace vantor
