#include "controls/Form.hpp"

#include <algorithm>
#include <utility>

#include "platform/MessagePump.hpp"
#include "support/RuntimeError.hpp"

namespace vantor {

Form::Form(Desktop& desktop, const FormDesign& design) : mDesktop(desktop), mDesign(design) {}

Form::~Form() = default;

void Form::Caption(std::string caption) {
    mCaption = std::move(caption);
    FormChanged(Property::Caption);
}

void Form::Place(const vantor::Place& place) {
    mPlace = place;
    FormChanged(Property::Place);
}

void Form::CenterIn(const vantor::Place& area) {
    vantor::Place place = mPlace;
    place.left = area.left + (area.width - place.width) / 2;
    place.top = area.top + (area.height - place.height) / 2;
    Place(place);
}

void Form::State(WindowState state) {
    mState = state;
    FormChanged(Property::State);
}

void Form::Placed(const vantor::Place& outer, WindowState state, const Size& inner) {
    mPlace = outer;
    mState = state;
    if (std::exchange(mInner, inner) != inner) Form_Resize();
}

void Form::Load() {
    if (mLoaded || mGone) return;
    const std::shared_ptr<Form> keepAlive = shared_from_this();
    try {
        ApplyDesign();
        mLoaded = true;
        mDesktop.mOpen.push_back(keepAlive);
        mPeer = mDesktop.mPeers.Draw(*this);
        Form_Load();
    } catch (...) {
        Leave();
        throw;
    }
}

void Form::Show(ShowMode mode, const Form* owner) {
    Load();
    if (mGone) return;
    if (!std::exchange(mVisible, true)) Form_Resize();
    if (mPeer) mPeer->Show(mode, owner ? owner->Handle() : 0);
}

bool Form::Unload() {
    if (!mLoaded || mUnloading) return mGone;
    const std::shared_ptr<Form> keepAlive = shared_from_this();
    mUnloading = true;
    if (!Form_QueryUnload()) {
        mUnloading = false;
        return false;
    }
    Form_Unload();
    Leave();
    return true;
}

void Form::Leave() {
    mPeer.reset();
    mVisible = false;
    mLoaded = false;
    mGone = true;
    std::erase_if(mDesktop.mOpen,
                  [this](const std::shared_ptr<Form>& form) { return form.get() == this; });
    if (mDesktop.mOpen.empty()) mDesktop.mPump.Quit();
}

void Form::ControlChanged(const Control& control, Property property) {
    if (mPeer) mPeer->ControlChanged(control, property);
}

Size Form::TextSize(const Control& control, const std::string& face,
                    const std::string& text) const {
    return mPeer ? mPeer->TextSize(control, face, text) : Size{};
}

void Form::FormChanged(Property property) {
    if (mPeer) mPeer->FormChanged(property);
}

void Form::DrawLine(const ThinLine& line) {
    if (mPeer) mPeer->DrawLine(line);
}

Control& Form::ControlOf(const ControlDesign& row) const {
    const auto found = std::ranges::find_if(mControls, [&row](const Control* control) {
        return control->Kind() == row.kind && control->Name() == row.name &&
               control->Index() == row.index;
    });
    if (found == mControls.end())
        throw RuntimeError(ErrorNumber::InternalError,
                           std::string("No control for the design row ") + row.name);
    return **found;
}

void Form::ApplyDesign() {
    mCaption = mDesign.caption;
    mTag = mDesign.tag;
    mPlace = mDesign.place;
    mInner = {mPlace.width, mPlace.height};
    std::size_t applied = 0;
    for (const ControlDesign& row : mDesign.controls) {
        Control& control = ControlOf(row);
        control.Caption(row.caption);
        control.Tag(row.tag);
        control.Place(row.place);
        ++applied;
    }
    if (applied != mControls.size())
        throw RuntimeError(ErrorNumber::InternalError,
                           std::string("A control of ") + mDesign.name + " has no design row");
}

}  // namespace vantor
