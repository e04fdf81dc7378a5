// The serial communications control: a port that a window configures with texts, opens, and
// reads and writes through buffers.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "controls/Control.hpp"
#include "controls/Event.hpp"
#include "platform/SerialPort.hpp"

namespace vantor {

/// The line parameters in `settings` ("38400,N,8,2": bits per second, parity letter N, O or E,
/// data bits, stop bits). Raises RuntimeError 380 for anything else.
LineSettings ParseLineSettings(std::string_view settings);

/// A serial port as a control. Text in both directions is bytes, passed unchanged: raw mode, no
/// flow control, DTR and RTS asserted while open. Nothing here raises for the sake of the line:
/// an open that fails, or a device that disappears, is seen only through `PortOpen`.
class SerialControl : public Control {
public:
    SerialControl(Form& parent, std::string name, SerialPorts& ports);

    /// The port's name, "COM1" style; a bare number n means COMn. Takes effect at the next open.
    const std::string& Port() const { return mPortName; }
    void Port(std::string name) { mPortName = std::move(name); }

    /// The settings string (see ParseLineSettings), checked and used at the next open.
    const std::string& Settings() const { return mSettings; }
    void Settings(std::string settings) { mSettings = std::move(settings); }

    /// Opens the port, closing it first when it is open.
    void OpenPort();
    void ClosePort();
    bool PortOpen() const { return mPort != nullptr; }

    /// Queues `bytes` for sending; does nothing on a closed port.
    void Output(std::string_view bytes);
    /// Bytes queued and not yet sent; 0 on a closed port. Asking moves the queue on.
    std::size_t OutBufferCount();

    /// Bytes waiting to be read; 0 on a closed port. Asking moves the output queue on.
    std::size_t InBufferCount();
    /// Takes all waiting bytes.
    std::string Input();
    void ClearInput();

    /// 0: no receive events. n: an event whenever at least n bytes wait. Raising it with enough
    /// bytes already waiting raises the event at once.
    void ReceiveThreshold(std::size_t bytes);
    std::size_t ReceiveThreshold() const { return mReceiveThreshold; }

    /// Bytes have arrived. Not raised while its handler runs; the bytes stay in the buffer.
    Event<> Receive{[this] { return KeepParent(); }};

private:
    /// Runs one operation on the open port; a lost device closes the control.
    template <typename Operation>
    void OnPort(Operation&& operation);
    void FlushPending();
    void ListenIfWanted();
    void RaiseIfReached();

    SerialPorts& mPorts;
    std::string mPortName;
    std::string mSettings;
    std::unique_ptr<SerialPort> mPort;
    std::string mPending;  // accepted by Output, not yet taken by the driver
    std::size_t mReceiveThreshold = 0;
};

}  // namespace vantor
