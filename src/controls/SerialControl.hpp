// The serial communications control: a port that a window configures by strings, opens,
// and reads and writes through buffers.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "controls/BufferedPort.hpp"
#include "controls/Control.hpp"
#include "controls/Event.hpp"

namespace vantor {

/// A serial port as a control. Text in both directions is bytes, passed unchanged:
/// raw mode, no flow control, DTR and RTS asserted while open. No line error raises:
/// a failed open or a lost device shows only in `PortOpen`.
class SerialControl : public Control {
public:
    SerialControl(Form& parent, std::string name, SerialPorts& ports);

    /// The port's name, "COM1" style; a bare number n means COMn. Takes effect at the next open.
    const std::string& Port() const { return mPort.name; }
    void Port(std::string name) { mPort.name = std::move(name); }

    /// The settings string (see ParseLineSettings), checked and used at the next open.
    const std::string& Settings() const { return mPort.settings; }
    void Settings(std::string settings) { mPort.settings = std::move(settings); }

    /// Opens the port, closing it first when it is open.
    void OpenPort();
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
    std::size_t ReceiveThreshold() const { return mReceiveThreshold; }

    /// Bytes have arrived. Not re-entrant; bytes that arrive meanwhile stay in the buffer.
    Event<> Receive{[this] { return KeepParent(); }};

private:
    std::function<void()> Listener();
    void RaiseIfReached();

    BufferedPort mPort;
    std::size_t mReceiveThreshold = 0;
};

}  // namespace vantor
