#include "controls/SerialControl.hpp"

#include <utility>

namespace vantor {

SerialControl::SerialControl(Form& parent, std::string name, SerialPorts& ports)
    : Control(parent, ControlKind::SerialControl, std::move(name)), mPort(ports) {}

void SerialControl::OpenPort() {
    mPort.Open(Listener());
}

void SerialControl::ReceiveThreshold(std::size_t bytes) {
    mReceiveThreshold = bytes;
    mPort.Notify(Listener());
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
