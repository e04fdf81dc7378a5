#include "monitor/frmPortSettings.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "app/base/LoadResources.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "support/LineSettings.hpp"
#include "support/Traps.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor {
namespace {

/// Lists `items` and selects `chosen`, appended to the list when it is missing.
void Fill(ComboBox& combo, std::vector<std::string> items, const std::string& chosen) {
    if (std::ranges::find(items, chosen) == items.end()) items.push_back(chosen);
    combo.Items(std::move(items));
    combo.ListIndex(FindStringComboBox(combo, chosen));
}

}  // namespace

frmPortSettings::frmPortSettings(WindowManager& manager, Platform& platform,
                                 TerminalControl& terminal)
    : Form(manager, kPortSettingsWindowDesign), mPlatform(platform), mTerminal(terminal) {
    cmdOK.Click.Connect([this] { cmdOK_Click(); });
    cmdCancel.Click.Connect(
        [this] { Trapped("frmPortSettings.cmdCancel_Click", [this] { Unload(); }); });
}

void frmPortSettings::Form_Load() {
    Trapped("frmPortSettings.Form_Load", [this] {
        LoadResources(*this, mPlatform.strings);
        std::vector<std::string> ports;
        for (const SerialPortInfo& port : mPlatform.ports.List()) ports.push_back(port.name);
        Fill(cboPort, std::move(ports), mTerminal.Port().name);
        ListLine();
    });
}

void frmPortSettings::ListLine() {
    LineSettings line;
    Ignoring([&] { line = ParseLineSettings(mTerminal.Port().settings); });
    Fill(cboSpeed,
         {"300", "600", "1200", "2400", "4800", "9600", "19200", "38400", "57600", "115200"},
         std::to_string(line.bitsPerSecond));
    const auto text = [this](Str name) { return mPlatform.strings.Text(name); };
    cboParity.Items({text(Str::NoParity), text(Str::OddParity), text(Str::EvenParity)});
    cboParity.ListIndex(static_cast<int>(line.parity));
    Fill(cboDataBits, {"7", "8"}, std::to_string(line.dataBits));
    Fill(cboStopBits, {"1", "2"}, std::to_string(line.stopBits));
    cboFlowControl.Items({text(Str::NoFlowControl)});
    cboFlowControl.ListIndex(0);
    cboFlowControl.Enabled(false);
}

/// Compares parsed values: "9600,n,8,1" equals the "9600,N,8,1" of the dialog.
bool frmPortSettings::IsChange(const std::string& port, const std::string& settings) const {
    const BufferedPort& now = mTerminal.Port();
    bool same = false;
    Ignoring([&] { same = ParseLineSettings(settings) == ParseLineSettings(now.settings); });
    return port != now.name || !same;
}

void frmPortSettings::Apply(const std::string& port, const std::string& settings) {
    const bool reopen = mTerminal.PortOpen();
    if (reopen) {
        mTerminal.DrainOutput();
        mTerminal.PerformCommand(TerminalCommand::Close);
    }
    mTerminal.Port().name = port;
    mTerminal.Port().settings = settings;
    if (reopen) mTerminal.PerformCommand(TerminalCommand::Open);
    mReopenFailed = reopen && !mTerminal.PortOpen();
}

void frmPortSettings::cmdOK_Click() {
    Trapped("frmPortSettings.cmdOK_Click", [this] {
        const std::string port = cboPort.Text();
        const char parity = LetterOf(static_cast<Parity>(cboParity.ListIndex()));
        const std::string settings =
            cboSpeed.Text() + "," + parity + "," + cboDataBits.Text() + "," + cboStopBits.Text();
        // Unchanged settings must not reopen the port, which would interrupt reception.
        if (IsChange(port, settings) && !mTerminal.Parent().Gone()) Apply(port, settings);
        Unload();
    });
}

}  // namespace vantor
