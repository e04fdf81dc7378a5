// The options dialog: the serial settings, edited in one transaction.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "app/base/CFormPos.hpp"
#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "controls/TreeView.hpp"
#include "platform/Platform.hpp"
#include "settings/CTreeViewEnh.hpp"

namespace vantor {

class CAppSettings;

/// What the options dialog needs from the main window.
class OptionsOwner {
public:
    virtual ~OptionsOwner() = default;
    /// The names of the serial ports that are present now, in numeric order.
    virtual std::vector<std::string> CommPorts() const = 0;
};

/// Each selection is set at once. OK and Apply keep it; closing the dialog in any other way reverts
/// it. Unloading the window always ends the edit.
class frmConfigure : public Form {
public:
    frmConfigure(WindowManager& manager, Platform& platform);

    /// Shows `settings` and begins to edit them. Called after loading and before showing;
    /// both must outlive the loaded window.
    void Initialize(CAppSettings& settings, const OptionsOwner& owner);

    /// Enables the buttons that apply the settings.
    void SetValid(bool valid);

    TreeView tvwOptions{*this, "tvwOptions"};
    PictureBox picSelection{*this, "picSelection"};
    PictureBox picDetails{*this, "picDetails"};
    Label lblDetails{*this, "lblDetails"};
    /// The pages, all at the position of picDetails.
    std::array<PictureBox, 1> picHolder{PictureBox{*this, "picHolder", 0}};
    /// Heading, port, baud rate, data bits, parity, stop bits.
    std::array<Label, 6> lblLabels{Label{*this, "lblLabels", 0}, Label{*this, "lblLabels", 1},
                                   Label{*this, "lblLabels", 2}, Label{*this, "lblLabels", 3},
                                   Label{*this, "lblLabels", 4}, Label{*this, "lblLabels", 5}};
    ComboBox cboPort{*this, "cboPort"};
    ComboBox cboBaudRate{*this, "cboBaudRate"};
    ComboBox cboDataBits{*this, "cboDataBits"};
    ComboBox cboParity{*this, "cboParity"};
    ComboBox cboStopBits{*this, "cboStopBits"};
    CommandButton cmdOK{*this, "cmdOK"};
    CommandButton cmdCancel{*this, "cmdCancel"};
    CommandButton cmdApply{*this, "cmdApply"};

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void RestorePosition();
    void InitializeControls();
    void LoadData();
    void ApplySettings();
    void PrintSelection(const std::string& text);
    void EnablePage(const PictureBox* page);
    void tvwOptions_NodeClick(const TreeNode& node);
    void mobjSettings_Valid(bool valid);
    void cboPort_Click();
    void cboBaudRate_Click();
    void cboDataBits_Click();
    void cboParity_Click();
    void cboStopBits_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdApply_Click();

    Platform& mPlatform;
    CFormPos mobjFormPos;
    CTreeViewEnh mobjTreeViewEnh;
    CAppSettings* mobjSettings = nullptr;
    const OptionsOwner* mobjOwner = nullptr;
    bool mblnLoading = false;  // the lists are being filled
};

}  // namespace vantor
