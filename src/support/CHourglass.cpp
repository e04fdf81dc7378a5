#include "support/CHourglass.hpp"

#include "platform/Peers.hpp"

namespace vantor {

CHourglass::~CHourglass() {
    Value(false);
}

void CHourglass::Value(bool wait) {
    mValue = wait;
    mPeers.SetMousePointer(wait ? MousePointer::Hourglass : MousePointer::Default);
}

}  // namespace vantor
