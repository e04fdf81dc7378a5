// The wait cursor for the duration of a procedure.
#pragma once

#include "platform/Peers.hpp"

namespace vantor {

/// Restores the default pointer on destruction, on every exit path and whatever `Value` was.
class CHourglass {
public:
    explicit CHourglass(Peers& peers) : mPeers(peers) {}
    ~CHourglass() { Value(false); }
    CHourglass(const CHourglass&) = delete;
    CHourglass& operator=(const CHourglass&) = delete;

    /// True shows the hourglass, false the default pointer.
    void Value(bool wait) {
        mValue = wait;
        mPeers.SetMousePointer(wait ? MousePointer::Hourglass : MousePointer::Default);
    }
    bool Value() const { return mValue; }

private:
    Peers& mPeers;
    bool mValue = false;
};

}  // namespace vantor
