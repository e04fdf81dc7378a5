#include "monitor/frmFind.hpp"

#include "app/base/LoadResources.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "support/Traps.hpp"

namespace vantor {

frmFind::frmFind(WindowManager& manager, const StringTable& strings,
                 std::vector<std::string>& history)
    : Form(manager, kFindWindowDesign), mStrings(strings), mHistory(history) {
    cmdNext.Click.Connect([this] { Trapped("frmFind.cmdNext_Click", [this] { Look(true); }); });
    cmdPrevious.Click.Connect(
        [this] { Trapped("frmFind.cmdPrevious_Click", [this] { Look(false); }); });
    cmdClose.Click.Connect([this] { Trapped("frmFind.cmdClose_Click", [this] { Unload(); }); });
}

void frmFind::Form_Load() {
    Trapped("frmFind.Form_Load", [this] {
        LoadResources(*this, mStrings);
        cboText.Items(mHistory);
        if (!mHistory.empty()) cboText.ListIndex(0);
        cboMatchCase.Items({mStrings.Text(Str::OptionOff), mStrings.Text(Str::OptionOn)});
        cboMatchCase.ListIndex(0);
    });
}

void frmFind::Form_Unload() {
    Trapped("frmFind.Form_Unload", [this] { Closed.Raise(); });
}

void frmFind::Look(bool forward) {
    if (cboText.Text().empty()) return;
    Remember(cboText, mHistory);
    bool found = false;
    Search.Raise({cboText.Text(), cboMatchCase.ListIndex() == 1, forward}, found);
    if (!Gone()) lblResult.Caption(found ? "" : mStrings.Text(Str::NotFound));
}

}  // namespace vantor
