#include "dialogs/frmStatus.hpp"

#include "app/base/LoadResources.hpp"
#include "resources/Designs.hpp"
#include "support/Traps.hpp"

namespace vantor {

frmStatus::frmStatus(WindowManager& manager, const StringTable& strings)
    : Form(manager, kStatusWindowDesign), mStrings(strings) {
    cmdOK.Click.Connect([this] { cmdOK_Click(); });
}

void frmStatus::Form_Load() {
    Trapped("frmStatus.Form_Load", [this] {
        LoadResources(*this, mStrings);
        DisplayOK(false);
    });
}

void frmStatus::Message(const std::string& text) {
    Trapped("frmStatus.Message", [&] {
        lblMessage.Caption(text);
        lblMessage.Refresh();
    });
}

void frmStatus::DisplayOK(bool display) {
    Trapped("frmStatus.DisplayOK", [&] {
        vantor::Place place = Place();
        place.height = display ? kTallHeight : kShortHeight;
        Place(place);
        // A button below the visible area must also be hidden, or Tab and Enter would reach it.
        cmdOK.Visible(display);
    });
}

void frmStatus::cmdOK_Click() {
    Trapped("frmStatus.cmdOK_Click", [this] { Unload(); });
}

}  // namespace vantor
