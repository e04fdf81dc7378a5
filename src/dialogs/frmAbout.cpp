#include "dialogs/frmAbout.hpp"

#include <string>

#include "app/base/AppInfo.hpp"
#include "app/base/LoadResources.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"

namespace vantor {

frmAbout::frmAbout(WindowManager& manager, const StringTable& strings)
    : Form(manager, kAboutWindowDesign), mStrings(strings) {
    cmdOK.Click.Connect([this] { Trapped("frmAbout.cmdOK_Click", [this] { Unload(); }); });
    cmdFocus.Click.Connect([this] { Trapped("frmAbout.cmdFocus_Click", [this] { Unload(); }); });
}

void frmAbout::Form_Load() {
    Trapped("frmAbout.Form_Load", [this] {
        LoadResources(*this, mStrings, Translate::WithoutMenusAndTitle);
        const AppInfo app;
        lblVersion.Caption(mStrings.Text(Str::Version) + " " + std::to_string(app.major) + "." +
                           TwoDigits(app.minor) + "." + std::to_string(app.revision));
        lblRelease.Caption("");
        // The menu texts have an accelerator and an ellipsis, and there is no other "About" text.
        // The program's name is the same in both languages.
        Caption(app.title);
    });
}

}  // namespace vantor
