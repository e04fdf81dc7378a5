// The dialog for the terminal's own settings.
#pragma once

#include <array>
#include <optional>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "terminal/options/TerminalOptions.hpp"

namespace vantor {

class StringTable;

/// Shows those of the options that the context menu does not. Changes nothing itself.
class frmTerminalSettings : public Form {
public:
    frmTerminalSettings(WindowManager& manager, const StringTable& strings,
                        const TerminalOptions& options);

    /// The options as chosen; empty unless OK was pressed.
    const std::optional<TerminalOptions>& Chosen() const { return mChosen; }

    std::array<Label, 12> lblLabels{
        Label{*this, "lblLabels", 0}, Label{*this, "lblLabels", 1},  Label{*this, "lblLabels", 2},
        Label{*this, "lblLabels", 3}, Label{*this, "lblLabels", 4},  Label{*this, "lblLabels", 5},
        Label{*this, "lblLabels", 6}, Label{*this, "lblLabels", 7},  Label{*this, "lblLabels", 8},
        Label{*this, "lblLabels", 9}, Label{*this, "lblLabels", 10}, Label{*this, "lblLabels", 11}};
    ComboBox cboEnterKey{*this, "cboEnterKey"};
    ComboBox cboBackspaceKey{*this, "cboBackspaceKey"};
    ComboBox cboBreakKey{*this, "cboBreakKey"};
    ComboBox cboLocalEcho{*this, "cboLocalEcho"};
    ComboBox cboPastePace{*this, "cboPastePace"};
    ComboBox cboLongPaste{*this, "cboLongPaste"};
    ComboBox cboEncoding{*this, "cboEncoding"};
    ComboBox cboReturnFeeds{*this, "cboReturnFeeds"};
    ComboBox cboAnswers{*this, "cboAnswers"};
    ComboBox cboNotation{*this, "cboNotation"};
    ComboBox cboCaptureStamps{*this, "cboCaptureStamps"};
    ComboBox cboReopens{*this, "cboReopens"};
    CommandButton cmdOK{*this, "cmdOK"};
    CommandButton cmdCancel{*this, "cmdCancel"};

protected:
    void Form_Load() override;

private:
    template <typename Visit>
    void ForEachList(Visit&& visit);
    void cmdOK_Click();

    const StringTable& mStrings;
    TerminalOptions mOptions;
    std::optional<TerminalOptions> mChosen;
};

}  // namespace vantor
