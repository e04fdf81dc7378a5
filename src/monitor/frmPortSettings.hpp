// The terminal's dialog for port and line parameters.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "platform/Platform.hpp"
#include "platform/SerialPort.hpp"

namespace vantor {

class TerminalControl;

/// Shows the current settings of `terminal`. OK applies the selection and reopens an open port;
/// an unchanged selection has no effect. Invalid current settings show as 38400 bit/s, 8 data bits,
/// no parity, one stop bit. A speed that is no whole number from 50 to 4000000 is refused with a
/// box; the dialog stays as it is.
class frmPortSettings : public Form {
public:
    frmPortSettings(WindowManager& manager, Platform& platform, TerminalControl& terminal);

    /// OK was pressed and reopening the port failed.
    bool ReopenFailed() const { return mReopenFailed; }

    /// Port, speed, parity, data bits, stop bits, flow control.
    std::array<Label, 6> lblLabels{Label{*this, "lblLabels", 0}, Label{*this, "lblLabels", 1},
                                   Label{*this, "lblLabels", 2}, Label{*this, "lblLabels", 3},
                                   Label{*this, "lblLabels", 4}, Label{*this, "lblLabels", 5}};
    ComboBox cboPort{*this, "cboPort"};
    ComboBox cboSpeed{*this, "cboSpeed"};
    ComboBox cboParity{*this, "cboParity"};
    ComboBox cboDataBits{*this, "cboDataBits"};
    ComboBox cboStopBits{*this, "cboStopBits"};
    ComboBox cboFlowControl{*this, "cboFlowControl"};
    CommandButton cmdOK{*this, "cmdOK"};
    CommandButton cmdCancel{*this, "cmdCancel"};

protected:
    void Form_Load() override;

private:
    /// What the dialog states of the port.
    struct Choice {
        std::string port;
        std::string settings;
        FlowControl flowControl;
    };

    void ListPorts();
    void ListLine();
    void cmdOK_Click();
    Choice Chosen(const std::string& speed) const;
    std::optional<std::string> ChosenSpeed() const;
    bool IsChange(const Choice& choice) const;
    void Apply(const Choice& choice);

    Platform& mPlatform;
    TerminalControl& mTerminal;
    std::vector<std::string> mPortNames;  // in the order of the list
    bool mReopenFailed = false;
};

}  // namespace vantor
