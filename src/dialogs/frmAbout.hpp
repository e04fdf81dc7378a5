// The About window: title, version, legal notice, ownership notices.
#pragma once

#include <array>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"

namespace vantor {

class StringTable;

class frmAbout : public Form {
public:
    frmAbout(WindowManager& manager, const StringTable& strings);

    IconControl imgLogo{*this, "imgLogo"};
    Label lblTitle{*this, "lblTitle"};
    Label lblVersion{*this, "lblVersion"};
    Label lblRelease{*this, "lblRelease"};
    Label lblDisclaimer{*this, "lblDisclaimer"};
    /// The two ownership notices.
    std::array<Label, 2> lblOwnership{Label{*this, "lblOwnership", 0},
                                      Label{*this, "lblOwnership", 1}};
    CommandButton cmdOK{*this, "cmdOK"};
    CommandButton cmdFocus{*this, "cmdFocus"};

protected:
    void Form_Load() override;

private:
    const StringTable& mStrings;
};

}  // namespace vantor
