#include "monitor/frmPortSettings.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "app/base/LoadResources.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "support/LineSettings.hpp"
#include "support/Traps.hpp"
#include "support/text/Text.hpp"
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
        ListPorts();
        ListLine();
    });
}

/// "COM3 - USB Serial Port"; the current port is appended when it is missing.
void frmPortSettings::ListPorts() {
    const std::string& current = mTerminal.Port().name;
    std::vector<std::string> items;
    for (const SerialPortInfo& port : mPlatform.ports.List()) {
        mPortNames.push_back(port.name);
        items.push_back(port.description.empty() ? port.name
                                                 : port.name + " - " + port.description);
    }
    if (std::ranges::find(mPortNames, current) == mPortNames.end()) {
        mPortNames.push_back(current);
        items.push_back(current);
    }
    cboPort.Items(std::move(items));
    cboPort.ListIndex(
        static_cast<int>(std::ranges::find(mPortNames, current) - mPortNames.begin()));
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
    cboFlowControl.Items(
        {text(Str::NoFlowControl), text(Str::HardwareFlowControl), text(Str::SoftwareFlowControl)});
    cboFlowControl.ListIndex(static_cast<int>(mTerminal.Port().flowControl));
}

frmPortSettings::Choice frmPortSettings::Chosen(const std::string& speed) const {
    const char parity = LetterOf(static_cast<Parity>(cboParity.ListIndex()));
    return {mPortNames[static_cast<std::size_t>(cboPort.ListIndex())],
            speed + "," + parity + "," + cboDataBits.Text() + "," + cboStopBits.Text(),
            static_cast<FlowControl>(cboFlowControl.ListIndex())};
}

/// The typed speed in its plain form; nothing when it is none.
std::optional<std::string> frmPortSettings::ChosenSpeed() const {
    constexpr std::int64_t kSlowest = 50;
    constexpr std::int64_t kFastest = 4'000'000;
    const std::optional<std::int64_t> speed = ParseInteger(TrimBlanks(cboSpeed.Text()));
    if (!speed || *speed < kSlowest || *speed > kFastest) return std::nullopt;
    return std::to_string(*speed);
}

/// Compares parsed values: "9600,n,8,1" equals the "9600,N,8,1" of the dialog.
bool frmPortSettings::IsChange(const Choice& choice) const {
    const BufferedPort& now = mTerminal.Port();
    bool same = false;
    Ignoring([&] { same = ParseLineSettings(choice.settings) == ParseLineSettings(now.settings); });
    return choice.port != now.name || !same || choice.flowControl != now.flowControl;
}

void frmPortSettings::Apply(const Choice& choice) {
    const bool reopen = mTerminal.PortOpen();
    if (reopen) {
        mTerminal.DrainOutput();
        mTerminal.PerformCommand(TerminalCommand::Close);
    }
    mTerminal.Port().name = choice.port;
    mTerminal.Port().settings = choice.settings;
    mTerminal.Port().flowControl = choice.flowControl;
    if (reopen) mTerminal.PerformCommand(TerminalCommand::Open);
    mReopenFailed = reopen && !mTerminal.PortOpen();
}

void frmPortSettings::cmdOK_Click() {
    Trapped("frmPortSettings.cmdOK_Click", [this] {
        const std::optional<std::string> speed = ChosenSpeed();
        if (!speed) {
            mPlatform.boxes.Show({.text = mPlatform.strings.Text(Str::SpeedRefused),
                                  .icon = BoxIcon::Exclamation,
                                  .owner = WindowHandle()});
            return;
        }
        const Choice choice = Chosen(*speed);
        // Unchanged settings must not reopen the port, which would interrupt reception.
        if (IsChange(choice) && !mTerminal.Parent().Gone()) Apply(choice);
        Unload();
    });
}

}  // namespace vantor
