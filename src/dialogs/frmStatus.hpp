// The status window: a message during a long operation, with or without OK.
#pragma once

#include <string>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"

namespace vantor {

class StringTable;

class frmStatus : public Form {
public:
    frmStatus(WindowManager& manager, const StringTable& strings);

    /// Outer heights in twips: the message only, and with the OK button visible.
    static constexpr float kShortHeight = 1100;
    static constexpr float kTallHeight = 1800;

    /// Sets the message and draws it at once, even while the caller blocks the message loop.
    void Message(const std::string& text);

    /// True sets the tall size, with the OK button; false the short one.
    void DisplayOK(bool display);

    IconControl Image1{*this, "Image1"};
    Label lblMessage{*this, "lblMessage"};
    CommandButton cmdOK{*this, "cmdOK"};

protected:
    void Form_Load() override;

private:
    void cmdOK_Click();

    const StringTable& mStrings;
};

}  // namespace vantor
