#include "controls/Control.hpp"

#include <utility>

#include "controls/Form.hpp"

namespace vantor {

Control::Control(Form& parent, ControlKind kind, std::string name, int index)
    : mParent(parent), mKind(kind), mName(std::move(name)), mIndex(index) {
    parent.mControls.push_back(this);
}

void Control::Enabled(bool enabled) {
    if (std::exchange(mEnabled, enabled) != enabled) Changed(Property::Enabled);
}

void Control::Visible(bool visible) {
    if (std::exchange(mVisible, visible) != visible) Changed(Property::Visible);
}

void Control::Changed(Property property) {
    if (mParent.mPeer) mParent.mPeer->ControlChanged(*this, property);
}

Size Control::TextSize(const std::string& face, const std::string& text) const {
    return mParent.mPeer ? mParent.mPeer->TextSize(*this, face, text) : Size{};
}

Size Control::TerminalSize(int columns, int rows) const {
    return mParent.mPeer ? mParent.mPeer->TerminalSize(*this, columns, rows) : Size{};
}

std::shared_ptr<void> Control::KeepParent() const {
    return mParent.weak_from_this().lock();
}

}  // namespace vantor
