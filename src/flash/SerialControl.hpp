// The serial communications control of a flash session: a port that is configured by strings,
// opened, and read and written through buffers, with an event for received bytes.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "controls/BufferedPort.hpp"
#include "controls/Event.hpp"

namespace vantor {

/// Text in both directions is bytes, passed unchanged: raw mode, no flow control, DTR and RTS
/// asserted while open. No line error raises: a failed open or a lost device shows only in
/// `PortOpen`.
class SerialControl {
public:
    /// `ports` outlives the object. `keepAlive` keeps the object's owner alive while the receive
    /// event is handled.
    SerialControl(SerialPorts& ports, std::function<std::shared_ptr<void>()> keepAlive)
        : Receive(std::move(keepAlive)), mPort(ports) {}

    /// Bytes have arrived. Not re-entrant; bytes that arrive meanwhile stay in the buffer.
    Event<> Receive;

    /// The port's name, "COM1" style; a bare number n means COMn. Takes effect at the next open.
    void Port(std::string name) { mPort.name = std::move(name); }

    /// The settings string (see ParseLineSettings), checked and used at the next open.
    const std::string& Settings() const { return mPort.settings; }
    void Settings(std::string settings) { mPort.settings = std::move(settings); }

    /// Opens the port, closing it first when it is open.
    void OpenPort() { mPort.Open(Listener()); }
    void ClosePort() { mPort.Close(); }
    bool PortOpen() const { return mPort.IsOpen(); }
    /// Why the last `OpenPort` failed (see BufferedPort::OpenError).
    const std::optional<PortOpenError>& OpenError() const { return mPort.OpenError(); }

    /// Queues `bytes` for sending; does nothing on a closed port.
    void Output(std::string_view bytes) { mPort.Output(bytes); }
    /// Bytes queued and not yet sent; 0 on a closed port. Also flushes pending output.
    std::size_t OutBufferCount() { return mPort.OutBufferCount(); }

    /// Bytes waiting to be read; 0 on a closed port. Also flushes pending output.
    std::size_t InBufferCount() { return mPort.InBufferCount(); }
    /// Reads all waiting bytes.
    std::string Input() { return mPort.Input(); }
    void ClearInput() { mPort.ClearInput(); }

    /// 0: no receive events. n: an event whenever at least n bytes are waiting. When enough bytes
    /// are already waiting, setting it raises the event at once.
    void ReceiveThreshold(std::size_t bytes);

private:
    std::function<void()> Listener();
    void RaiseIfReached();

    BufferedPort mPort;
    std::size_t mReceiveThreshold = 0;
};

}  // namespace vantor
