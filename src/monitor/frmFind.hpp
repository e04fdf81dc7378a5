// The box for a search in the text of the terminal.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"

namespace vantor {

class StringTable;

/// Modeless, so that the terminal can be used meanwhile.
class frmFind : public Form {
public:
    /// `history` (the last one first) outlives the loaded window.
    frmFind(WindowManager& manager, const StringTable& strings, std::vector<std::string>& history);

    struct Request {
        std::string text;
        bool matchCase = false;
        bool forward = true;
    };
    /// The user asks for the next or the previous occurrence of a text, which is not empty.
    /// The handler sets `found`.
    Event<const Request&, bool&> Search{[this] { return weak_from_this().lock(); }};
    /// The box has closed.
    Event<> Closed{[this] { return weak_from_this().lock(); }};

    /// Text, match case.
    std::array<Label, 2> lblLabels{Label{*this, "lblLabels", 0}, Label{*this, "lblLabels", 1}};
    Label lblResult{*this, "lblResult"};
    ComboBox cboText{*this, "cboText"};
    ComboBox cboMatchCase{*this, "cboMatchCase"};
    CommandButton cmdNext{*this, "cmdNext"};
    CommandButton cmdPrevious{*this, "cmdPrevious"};
    CommandButton cmdClose{*this, "cmdClose"};

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void Look(bool forward);

    const StringTable& mStrings;
    std::vector<std::string>& mHistory;
};

}  // namespace vantor
