// The serial communications control of a flash session: a buffered port with an event for received
// bytes.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

#include "controls/BufferedPort.hpp"
#include "controls/Event.hpp"

namespace vantor {

/// Text in both directions is bytes, passed unchanged: raw mode, no flow control, DTR and RTS
/// asserted while open. No line error raises: a failed open or a lost device shows only in
/// `IsOpen`.
class SerialControl : BufferedPort {
public:
    /// `ports` outlives the object. `keepAlive` keeps the object's owner alive while the receive
    /// event is handled.
    SerialControl(SerialPorts& ports, std::function<std::shared_ptr<void>()> keepAlive)
        : BufferedPort(ports), Receive(std::move(keepAlive)) {}

    // All but the callback for input, which the event replaces.
    using BufferedPort::ClearInput, BufferedPort::Close, BufferedPort::InBufferCount,
        BufferedPort::Input, BufferedPort::IsOpen, BufferedPort::name, BufferedPort::OpenError,
        BufferedPort::OutBufferCount, BufferedPort::Output, BufferedPort::settings;

    /// Bytes have arrived. Not re-entrant; bytes that arrive meanwhile stay in the buffer.
    Event<> Receive;

    /// Opens the port, closing it first when it is open.
    void Open() { BufferedPort::Open(Listener()); }

    /// 0: no receive events. n: an event whenever at least n bytes are waiting. When enough bytes
    /// are already waiting, setting it raises the event at once.
    void ReceiveThreshold(std::size_t bytes);

private:
    std::function<void()> Listener();
    void RaiseIfReached();

    std::size_t mReceiveThreshold = 0;
};

}  // namespace vantor
