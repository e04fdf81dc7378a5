// A serial port as the controls use it: configured with texts, silent about the line's troubles.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/SerialPort.hpp"

namespace vantor {

/// The line parameters in `settings` ("38400,N,8,2": bits per second, parity letter N, O or E,
/// data bits, stop bits). Raises RuntimeError 380 for anything else.
LineSettings ParseLineSettings(std::string_view settings);

/// A port that keeps what the driver does not take at once. Nothing here raises for the sake of
/// the line: an open that fails, or a device that disappears, is seen only through `IsOpen`.
class BufferedPort {
public:
    explicit BufferedPort(SerialPorts& ports) : mPorts(ports) {}

    std::string name;      ///< "COM1" style, or the bare number; used at the next open
    std::string settings;  ///< see ParseLineSettings; checked and used at the next open

    /// Opens the port, closing it first when it is open. `notify`, when set, is called at each
    /// pump that finds input, and once when the device has gone.
    void Open(std::function<void()> notify);
    void Close();
    bool IsOpen() const { return mPort != nullptr; }
    /// Why the last `Open` failed; none after a success or an error other than those of the port.
    const std::optional<PortOpenError>& OpenError() const { return mOpenError; }

    /// Sets what is called on input of the open port; an empty function ends it.
    void Notify(std::function<void()> notify);

    /// Queues `bytes` for sending; does nothing on a closed port.
    void Output(std::string_view bytes);
    /// Hands the driver what it takes now. True when nothing is left to hand over.
    bool FlushPending();
    /// Forgets what the driver has not taken, except the rest of the line that has begun.
    void DropPendingLines();
    /// Bytes queued and not yet sent; 0 on a closed port. Asking moves the queue on.
    std::size_t OutBufferCount();

    /// Bytes waiting to be read; 0 on a closed port. Asking moves the output queue on.
    std::size_t InBufferCount();
    /// Takes all waiting bytes, or about `most` of them: as many whole pieces as reach it.
    std::string Input(std::size_t most = static_cast<std::size_t>(-1));
    void ClearInput();

private:
    /// Runs one operation on the open port; a lost device closes it.
    template <typename Operation>
    void OnPort(Operation&& operation);

    SerialPorts& mPorts;
    std::unique_ptr<SerialPort> mPort;
    std::optional<PortOpenError> mOpenError;
    std::string mPending;  // accepted by Output, not yet taken by the driver
};

}  // namespace vantor
