// The wait cursor for the duration of a procedure.
#pragma once

#include "platform/Peers.hpp"

namespace vantor {

/// Restores the default pointer on destruction, on every exit path and whatever was shown.
class CHourglass {
public:
    explicit CHourglass(Peers& peers) : mPeers(peers) {}
    ~CHourglass() { Value(false); }
    CHourglass(const CHourglass&) = delete;
    CHourglass& operator=(const CHourglass&) = delete;

    /// True shows the hourglass, false the default pointer.
    void Value(bool wait) {
        mPeers.SetMousePointer(wait ? MousePointer::Hourglass : MousePointer::Default);
    }

private:
    Peers& mPeers;
};

}  // namespace vantor
