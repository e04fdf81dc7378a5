// The box for bytes that no key sends.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "platform/Platform.hpp"

namespace vantor {

class TerminalControl;

/// Modeless, so that the terminal shows the answer. Bytes are text with escapes or hexadecimal; a
/// text with a mistake is refused as a whole, by a box that says where it is.
class frmSendBytes : public Form {
public:
    /// `terminal`, and `history` (the last one first), outlive the loaded window.
    frmSendBytes(WindowManager& manager, Platform& platform, TerminalControl& terminal,
                 std::vector<std::string>& history);

    /// The box has closed.
    Event<> Closed{[this] { return weak_from_this().lock(); }};

    /// Bytes, form.
    std::array<Label, 2> lblLabels{Label{*this, "lblLabels", 0}, Label{*this, "lblLabels", 1}};
    Label lblResult{*this, "lblResult"};
    ComboBox cboBytes{*this, "cboBytes"};
    ComboBox cboForm{*this, "cboForm"};
    CommandButton cmdSend{*this, "cmdSend"};
    CommandButton cmdClose{*this, "cmdClose"};

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void cmdSend_Click();
    /// Tells the number, from 1, of the first character that cannot be read.
    void Refuse(std::size_t position);

    Platform& mPlatform;
    TerminalControl& mTerminal;
    std::vector<std::string>& mHistory;
};

}  // namespace vantor
