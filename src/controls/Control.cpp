#include "controls/Control.hpp"

#include <utility>

#include "controls/Form.hpp"

namespace vantor {

Control::Control(Form& parent, ControlKind kind, std::string name, int index)
    : mParent(parent), mKind(kind), mName(std::move(name)), mIndex(index) {
    parent.Join(*this);
}

void Control::Caption(std::string caption) {
    mCaption = std::move(caption);
    Changed(Property::Caption);
}

void Control::Enabled(bool enabled) {
    if (std::exchange(mEnabled, enabled) != enabled) Changed(Property::Enabled);
}

void Control::Visible(bool visible) {
    if (std::exchange(mVisible, visible) != visible) Changed(Property::Visible);
}

void Control::ToolTip(std::string toolTip) {
    mToolTip = std::move(toolTip);
    Changed(Property::ToolTip);
}

void Control::SpokenName(std::string name) {
    mSpokenName = std::move(name);
    Changed(Property::SpokenName);
}

void Control::Place(const vantor::Place& place) {
    mPlace = place;
    Changed(Property::Place);
}

void Control::Border(vantor::Border border) {
    mBorder = border;
    Changed(Property::Border);
}

void Control::ZOrder() {
    Changed(Property::ZOrder);
}

void Control::Refresh() {
    Changed(Property::Repaint);
}

void Control::Changed(Property property) {
    mParent.ControlChanged(*this, property);
}

Size Control::TextSize(const std::string& face, const std::string& text) const {
    return mParent.TextSize(*this, face, text);
}

std::shared_ptr<void> Control::KeepParent() const {
    return mParent.weak_from_this().lock();
}

}  // namespace vantor
