// Event slots of controls.
#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace vantor {

/// Whether an event is re-entrant: may be raised while its own handler runs.
enum class Nesting : bool { Refused, Allowed };

/// One event with at most one handler. Handlers pump messages, so any event can be raised while
/// others are being handled; an event is not raised again while its own handler runs, unless the
/// handler was set to allow it.
template <typename... Args>
class Event {
public:
    /// `owner` returns the object to keep alive until the handler has returned: the form.
    explicit Event(std::function<std::shared_ptr<void>()> owner = {}) : mOwner(std::move(owner)) {}
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    /// Sets the handler; an empty function removes it.
    void Connect(std::function<void(Args...)> handler, Nesting nesting = Nesting::Refused) {
        mHandler = std::move(handler);
        mNesting = nesting;
    }

    /// Runs the handler, if one is set. False, with nothing done, while it is already running and
    /// not re-entrant.
    bool Raise(Args... args) {
        if (!mHandler) return true;
        if (mRunning && mNesting == Nesting::Refused) return false;
        const std::shared_ptr<void> keepAlive = mOwner ? mOwner() : nullptr;
        const Running guard(mRunning);
        const std::function<void(Args...)> handler = mHandler;
        handler(std::forward<Args>(args)...);
        return true;
    }

private:
    struct Running {
        explicit Running(bool& flag) : mFlag(flag), mBefore(std::exchange(flag, true)) {}
        ~Running() { mFlag = mBefore; }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        bool& mFlag;
        bool mBefore;
    };

    std::function<std::shared_ptr<void>()> mOwner;
    std::function<void(Args...)> mHandler;
    Nesting mNesting = Nesting::Refused;
    bool mRunning = false;
};

}  // namespace vantor
