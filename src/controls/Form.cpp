#include "controls/Form.hpp"

#include <algorithm>
#include <utility>

#include "platform/MessagePump.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

Place MiddleOf(const Place& area, Place place) {
    place.left = area.left + (area.width - place.width) / 2;
    place.top = area.top + (area.height - place.height) / 2;
    return place;
}

/// `start` clamped so that `length` fits into `room` from `from` on; `from` if it is too long.
float Within(float start, float length, float from, float room) {
    return std::max(from, std::min(start, from + room - length));
}

}  // namespace

Form::Form(WindowManager& manager, const FormDesign& design) : mManager(manager), mDesign(design) {}

Form::~Form() = default;

void Form::CenterIn(const vantor::Place& area) {
    Place(MiddleOf(area, mPlace));
}

void Form::CenterOn(const Form& other) {
    vantor::Place around = other.Place();
    // A minimised window is far off the screen.
    if (other.State() == WindowState::Minimised && other.mPeer)
        around = other.mPeer->NormalPlace().value_or(around);
    vantor::Place place = MiddleOf(around, mPlace);
    const vantor::Place area = mManager.GetPeers().WorkArea(around);
    place.left = Within(place.left, place.width, area.left, area.width);
    place.top = Within(place.top, place.height, area.top, area.height);
    Place(place);
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
        mManager.mOpen.push_back(keepAlive);
        mPeer = mManager.mPeers.Draw(*this);
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
    if (mPeer) mPeer->Show(mode, owner ? owner->WindowHandle() : 0);
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
    std::erase_if(mManager.mOpen,
                  [this](const std::shared_ptr<Form>& form) { return form.get() == this; });
    if (mManager.mOpen.empty()) mManager.mPump.Quit();
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
    for (const ControlDesign& row : mDesign.controls) {
        Control& control = ControlOf(row);
        control.Caption(row.caption);
        control.Tag(row.tag);
        control.Place(row.place);
    }
    if (mDesign.controls.size() != mControls.size())
        throw RuntimeError(ErrorNumber::InternalError,
                           std::string("A control of ") + mDesign.name + " has no design row");
}

}  // namespace vantor
