#include "monitor/frmSend.hpp"

#include "app/base/LoadResources.hpp"
#include "resources/Designs.hpp"
#include "support/Traps.hpp"

namespace vantor {

frmSend::frmSend(WindowManager& manager, const StringTable& strings)
    : Form(manager, kSendWindowDesign), mStrings(strings) {
    cmdCancel.Click.Connect([this] { cmdCancel_Click(); });
}

void frmSend::Form_Load() {
    Trapped("frmSend.Form_Load", [this] { LoadResources(*this, mStrings); });
}

void frmSend::Initialize(const std::string& fileName) {
    Trapped("frmSend.Initialize", [&] {
        Load();
        mFileName = fileName;
        lblFilename.Caption(fileName.substr(fileName.rfind('\\') + 1) + " ");
    });
}

std::string frmSend::FileName() const {
    std::string name;
    Trapped("frmSend.FileName", [&] { name = mFileName; });
    return name;
}

void frmSend::status(const std::string& text) {
    Trapped("frmSend.status", [&] {
        if (Gone()) return;
        lblStatus.Caption(text + " ");
        lblStatus.Refresh();
    });
}

bool frmSend::Cancelled() const {
    bool cancelled = false;
    Trapped("frmSend.Cancelled", [&] { cancelled = mCancelled; });
    return cancelled;
}

void frmSend::cmdCancel_Click() {
    Trapped("frmSend.cmdCancel_Click", [this] { mCancelled = true; });
}

bool frmSend::Form_QueryUnload() {
    cmdCancel_Click();
    return true;
}

void frmSend::Form_Paint() {
    Trapped("frmSend.Form_Paint", [this] {
        DrawEdge(lblStatus);
        DrawEdge(lblFilename);
    });
}

void frmSend::DrawEdge(const Control& control) {
    Trapped("frmSend.DrawEdge", [&] {
        const float pixel = Manager().GetPeers().TwipsPerPixel();
        const vantor::Place& place = control.Place();
        const float left = place.left - pixel;
        const float top = place.top - pixel;
        const float right = place.left + place.width;
        const float bottom = place.top + place.height;
        using enum SystemColour;
        DrawLine({left, top, right, top, ButtonShadow});
        DrawLine({left, top, left, bottom, ButtonShadow});
        DrawLine({left, bottom, right, bottom, Highlight3D});
        DrawLine({right, top, right, bottom, Highlight3D});
    });
}

}  // namespace vantor
