#include "controls/Controls.hpp"

#include <utility>

#include "support/RuntimeError.hpp"

namespace vantor {

void ProgressBar::Value(std::int16_t value) {
    if (value < 0 || value > 100) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    mValue = value;
    Changed(Property::Value);
}

void PictureBox::Loaded(std::shared_ptr<const Picture> loaded) {
    mLoaded = std::move(loaded);
    Changed(Property::Repaint);
}

void CheckBox::Value(bool value) {
    mValue = value;
    Changed(Property::Value);
}

Timer::Timer(Form& parent, std::string name, MessagePump& pump, std::uint32_t intervalMs)
    : Control(parent, ControlKind::Timer, std::move(name)), mPump(pump), mIntervalMs(intervalMs) {
    Control::Enabled(false);
}

Timer::~Timer() {
    if (mTimer != 0) mPump.StopTimer(mTimer);
}

void Timer::Enabled(bool enabled) {
    if (enabled && mTimer == 0) {
        mTimer = mPump.StartTimer(mIntervalMs, [this] { Tick.Raise(); });
    } else if (!enabled && mTimer != 0) {
        mPump.StopTimer(std::exchange(mTimer, 0));
    }
    Control::Enabled(enabled);
}

}  // namespace vantor
