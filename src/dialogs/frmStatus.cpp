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
        Height(kShortHeight);
    });
}

void frmStatus::Message(const std::string& text) {
    Trapped("frmStatus.Message", [&] {
        lblMessage.Caption(text);
        lblMessage.Refresh();
    });
}

void frmStatus::DisplayOK(bool display) {
    Trapped("frmStatus.DisplayOK", [&] { Height(display ? kTallHeight : kShortHeight); });
}

void frmStatus::Height(float twips) {
    vantor::Place place = Place();
    place.height = twips;
    Place(place);
    // A button below the visible area must also be hidden, or Tab and Enter would reach it.
    cmdOK.Visible(twips == kTallHeight);
}

void frmStatus::cmdOK_Click() {
    Trapped("frmStatus.cmdOK_Click", [this] { Unload(); });
}

}  // namespace vantor
