#include "monitor/frmSendBytes.hpp"

#include "app/base/LoadResources.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "support/Traps.hpp"
#include "terminal/TerminalControl.hpp"
#include "terminal/session/TypedBytes.hpp"

namespace vantor {

frmSendBytes::frmSendBytes(WindowManager& manager, Platform& platform, TerminalControl& terminal,
                           std::vector<std::string>& history)
    : Form(manager, kSendBytesWindowDesign),
      mPlatform(platform),
      mTerminal(terminal),
      mHistory(history) {
    cmdSend.Click.Connect([this] { cmdSend_Click(); });
    cmdClose.Click.Connect(
        [this] { Trapped("frmSendBytes.cmdClose_Click", [this] { Unload(); }); });
}

void frmSendBytes::Form_Load() {
    Trapped("frmSendBytes.Form_Load", [this] {
        LoadResources(*this, mPlatform.strings);
        cboBytes.Items(mHistory);
        cboForm.Items(
            {mPlatform.strings.Text(Str::BytesAsText), mPlatform.strings.Text(Str::BytesAsHex)});
        cboForm.ListIndex(0);
    });
}

void frmSendBytes::Form_Unload() {
    Trapped("frmSendBytes.Form_Unload", [this] { Closed.Raise(); });
}

void frmSendBytes::cmdSend_Click() {
    Trapped("frmSendBytes.cmdSend_Click", [this] {
        const auto form = static_cast<BytesForm>(cboForm.ListIndex());
        const TypedBytes typed = ParseBytes(cboBytes.Text(), form, mTerminal.Encoding());
        if (typed.wrongAt) return Refuse(*typed.wrongAt);
        if (typed.bytes.empty()) return;
        Remember(cboBytes, mHistory);
        mTerminal.SendBytes(typed.bytes);
        std::string told = mPlatform.strings.Text(Str::BytesSent);
        told.replace(told.find("%1"), 2, std::to_string(typed.bytes.size()));
        lblResult.Caption(mTerminal.PortOpen() ? told : "");
    });
}

void frmSendBytes::Refuse(std::size_t position) {
    lblResult.Caption("");
    std::string told = mPlatform.strings.Text(Str::BytesRefused);
    told.replace(told.find("%1"), 2, std::to_string(position));
    mPlatform.boxes.Show({.text = told, .icon = BoxIcon::Exclamation, .owner = WindowHandle()});
}

}  // namespace vantor
