#include "settings/frmConfigure.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/base/LoadResources.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "settings/CAppSettings.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

/// Lists `items` and selects `current`; selects nothing when it is not among them.
void Fill(ComboBox& combo, std::vector<std::string> items, const std::string& current) {
    combo.Items(std::move(items));
    combo.ListIndex(FindStringComboBox(combo, current));
}

}  // namespace

frmConfigure::frmConfigure(WindowManager& manager, Platform& platform)
    : Form(manager, kConfigureWindowDesign),
      mPlatform(platform),
      mobjFormPos(platform.registry, platform.codePage),
      mobjTreeViewEnh(platform.registry, platform.codePage) {
    tvwOptions.NodeClick.Connect([this](const TreeNode& node) { tvwOptions_NodeClick(node); });
    cboPort.Click.Connect([this] { cboPort_Click(); });
    cboBaudRate.Click.Connect([this] { cboBaudRate_Click(); });
    cboDataBits.Click.Connect([this] { cboDataBits_Click(); });
    cboParity.Click.Connect([this] { cboParity_Click(); });
    cboStopBits.Click.Connect([this] { cboStopBits_Click(); });
    cmdOK.Click.Connect([this] { cmdOK_Click(); });
    cmdCancel.Click.Connect([this] { cmdCancel_Click(); });
    cmdApply.Click.Connect([this] { cmdApply_Click(); });
}

void frmConfigure::Form_Load() {
    Trapped("frmConfigure.Form_Load", [this] {
        RestorePosition();
        LoadResources(*this, mPlatform.strings);
        InitializeControls();
    });
}

// Only the position of the stored record is used. The size is always that of the design, not one
// stored by a version with another design, and the dialog is never minimised or maximised.
void frmConfigure::RestorePosition() {
    mobjFormPos.Form = this;
    const bool restored = mobjFormPos.RestoreForm(true) && State() == WindowState::Normal;
    State(WindowState::Normal);
    const float pixel = Manager().GetPeers().TwipsPerPixel();
    const auto whole = [pixel](float twips) { return std::round(twips / pixel) * pixel; };
    const vantor::Place& design = Design().place;
    Place({whole(Place().left), whole(Place().top), design.width, design.height});
    if (!restored) mobjFormPos.CenterForm();
}

void frmConfigure::InitializeControls() {
    Trapped("frmConfigure.InitializeControls", [this] {
        const auto text = [this](Str name) { return mPlatform.strings.Text(name); };
        tvwOptions.Clear();
        tvwOptions.Add(
            {.key = "P1", .parent = "", .text = text(Str::CommunicationsNode), .bold = true});
        tvwOptions.Add({.key = "C0", .parent = "P1", .text = text(Str::SettingsNode)});
        mobjTreeViewEnh.Tree = &tvwOptions;
        mobjTreeViewEnh.RestoreNodeStates();
        for (PictureBox& page : picHolder) {
            const vantor::Place& at = picDetails.Place();
            page.Place({at.left, at.top, page.Place().width, page.Place().height});
            page.Border(vantor::Border::Static);
        }
        picDetails.Border(vantor::Border::Static);
        tvwOptions.Border(vantor::Border::Static);
        const int settings = tvwOptions.NodeIndex("C0");
        tvwOptions.Select(settings);
        tvwOptions_NodeClick(tvwOptions.Nodes()[static_cast<std::size_t>(settings)]);
    });
}

void frmConfigure::Initialize(CAppSettings& settings, const OptionsOwner& owner) {
    Trapped("frmConfigure.Initialize", [&] {
        mobjSettings = &settings;
        settings.Valid = [this](bool& valid) { mobjSettings_Valid(valid); };
        SetValid(settings.IsValid());
        mobjOwner = &owner;
        LoadData();
        settings.BeginEdit();
    });
}

void frmConfigure::SetValid(bool valid) {
    Trapped("frmConfigure.SetValid", [&] {
        cmdApply.Enabled(valid);
        cmdOK.Enabled(valid);
    });
}

void frmConfigure::mobjSettings_Valid(bool valid) {
    Trapped("frmConfigure.mobjSettings_Valid", [&] { SetValid(valid); });
}

void frmConfigure::LoadData() {
    const auto fill = [this] {
        mblnLoading = true;
        std::vector<std::string> ports = mobjOwner->CommPorts();
        std::erase_if(
            ports, [](const std::string& name) { return name.find("COM") == std::string::npos; });
        Fill(cboPort, std::move(ports), mobjSettings->CommPort());
        Fill(cboBaudRate, {"9600", "38400"}, mobjSettings->BaudRate());
        const std::string none = mPlatform.strings.Text(Str::ParityNone);
        Fill(cboParity, {"N" + none}, UpperCase(mobjSettings->Parity()) + none);
        Fill(cboDataBits, {"8"}, mobjSettings->DataBits());
        Fill(cboStopBits, {"2"}, mobjSettings->StopBits());
    };
    Trapped("frmConfigure.LoadData", fill, [this] { mblnLoading = false; });
}

void frmConfigure::ApplySettings() {
    Trapped("frmConfigure.ApplySettings", [this] {
        mobjSettings->ApplyEdit();
        mobjSettings->BeginEdit();
    });
}

// --- tree and pages ------------------------------------------------------------------------------

void frmConfigure::tvwOptions_NodeClick(const TreeNode& node) {
    Trapped("frmConfigure.tvwOptions_NodeClick", [&] {
        PrintSelection(node.text);
        if (node.key.starts_with("C")) {
            const auto index = static_cast<std::size_t>(ToInt16(node.key.substr(1)));
            PictureBox& page = picHolder.at(index);
            page.ZOrder();
            EnablePage(&page);
        } else if (node.key.starts_with("P")) {
            picDetails.ZOrder();
            EnablePage(nullptr);
        }
    });
}

void frmConfigure::PrintSelection(const std::string& text) {
    picSelection.Cls();
    picSelection.FontName = "Tahoma";
    picSelection.CurrentX = picSelection.TextWidth(" ");
    picSelection.CurrentY = (picSelection.Place().height - picSelection.TextHeight(text)) / 2;
    picSelection.Print(text);
}

// A page behind another one must be disabled, or Tab would reach its hidden controls.
void frmConfigure::EnablePage(const PictureBox* page) {
    for (PictureBox& each : picHolder) each.Enabled(&each == page);
}

// --- lists ---------------------------------------------------------------------------------------

// A value that the settings reject is reported. The list keeps showing the selected value while
// the settings keep the old one. This is deliberate, here and in all handlers below.
void frmConfigure::cboPort_Click() {
    Trapped("frmConfigure.cboPort_Click", [this] {
        if (!mblnLoading) mobjSettings->CommPort(cboPort.Text());
    });
}

void frmConfigure::cboBaudRate_Click() {
    Trapped("frmConfigure.cboBaudRate_Click", [this] {
        constexpr double kRecommended = 38400;
        if (mblnLoading) return;
        mobjSettings->BaudRate(cboBaudRate.Text());
        if (LeadingNumber(cboBaudRate.Text()) >= kRecommended) return;
        mPlatform.boxes.Show({.text = mPlatform.strings.Text(Str::LowBaudRateAdvice),
                              .title = "",
                              .icon = BoxIcon::Information,
                              .owner = WindowHandle()});
        // If the window was closed while the box was open, its edit has ended.
        if (!Gone()) mobjSettings->BaudRate(cboBaudRate.Text());
    });
}

void frmConfigure::cboDataBits_Click() {
    Trapped("frmConfigure.cboDataBits_Click", [this] {
        if (!mblnLoading) mobjSettings->DataBits(cboDataBits.Text());
    });
}

void frmConfigure::cboParity_Click() {
    Trapped("frmConfigure.cboParity_Click", [this] {
        if (!mblnLoading) mobjSettings->Parity(cboParity.Text().substr(0, 1));
    });
}

// The only entry is one that the settings reject.
void frmConfigure::cboStopBits_Click() {
    Trapped("frmConfigure.cboStopBits_Click", [this] {
        if (!mblnLoading) mobjSettings->StopBits(cboStopBits.Text());
    });
}

// --- closing -------------------------------------------------------------------------------------

void frmConfigure::cmdOK_Click() {
    Trapped("frmConfigure.cmdOK_Click", [this] {
        mobjSettings->ApplyEdit();
        Unload();
    });
}

void frmConfigure::cmdApply_Click() {
    Trapped("frmConfigure.cmdApply_Click", [this] { ApplySettings(); });
}

void frmConfigure::cmdCancel_Click() {
    Trapped("frmConfigure.cmdCancel_Click", [this] {
        mobjSettings->CancelEdit();
        Unload();
    });
}

void frmConfigure::Form_Unload() {
    Trapped("frmConfigure.Form_Unload", [this] {
        // The title bar, Alt+F4 and the end of the program act as Cancel: otherwise the edit would
        // stay open and the next dialog could not begin its own.
        if (mobjSettings && mobjSettings->Editing()) mobjSettings->CancelEdit();
        if (mobjSettings) mobjSettings->Valid = {};
        mobjFormPos.SaveForm();
        mobjTreeViewEnh.SaveNodeStates();
        mobjOwner = nullptr;
    });
}

}  // namespace vantor
