#include "flash/SerialControl.hpp"

namespace vantor {

void SerialControl::ReceiveThreshold(std::size_t bytes) {
    mReceiveThreshold = bytes;
    Notify(Listener());
    RaiseIfReached();
}

std::function<void()> SerialControl::Listener() {
    if (mReceiveThreshold == 0) return {};
    return [this] { RaiseIfReached(); };
}

void SerialControl::RaiseIfReached() {
    if (mReceiveThreshold > 0 && InBufferCount() >= mReceiveThreshold) Receive.Raise();
}

}  // namespace vantor
