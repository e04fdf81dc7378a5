// A message pump that also polls something.
#pragma once

#include <functional>
#include <utility>

#include "platform/MessagePump.hpp"

namespace vantor {

/// Wraps a message pump and calls a function after each pass, so that the interrupt key is polled
/// in every wait of the session.
class WatchedPump : public MessagePump {
public:
    WatchedPump(MessagePump& inner, std::function<void()> afterRound)
        : mInner(inner), mAfterRound(std::move(afterRound)) {}

    void PumpPending() override {
        mInner.PumpPending();
        mAfterRound();
    }
    void AwaitInput() override { mInner.AwaitInput(); }
    void Run() override { mInner.Run(); }
    void Quit() override { mInner.Quit(); }
    TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) override {
        return mInner.StartTimer(intervalMs, std::move(tick));
    }
    void StopTimer(TimerId id) override { mInner.StopTimer(id); }

private:
    MessagePump& mInner;
    std::function<void()> mAfterRound;
};

}  // namespace vantor
