// A serial port for the controls: configured by strings, raises no line errors.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/SerialPort.hpp"

namespace vantor {

/// A port that buffers what the driver does not accept at once. No line error raises:
/// a failed open or a lost device shows only in `IsOpen`.
class BufferedPort {
public:
    explicit BufferedPort(SerialPorts& ports) : mPorts(ports) {}

    std::string name;      ///< "COM1" style, or only the number; used at the next open
    std::string settings;  ///< see ParseLineSettings; checked and used at the next open

    FlowControl flowControl = FlowControl::None;  ///< used at the next open

    /// Called when the device is found lost, inside any operation, after the port has closed. It
    /// must not destroy or open the port.
    std::function<void()> onLost;

    /// `name` as the system has it, "COM1" also for "1".
    std::string SystemName() const;

    /// Opens the port, closing it first when it is open. `notify`, if set, is called at each pump
    /// that finds input, and once when the device is lost.
    void Open(std::function<void()> notify);
    void Close();
    bool IsOpen() const { return mPort != nullptr; }
    /// Why the last `Open` failed; empty after success or after an error not raised by the port.
    const std::optional<PortOpenError>& OpenError() const { return mOpenError; }

    /// Sets the callback for input of the open port; an empty function removes it.
    void Notify(std::function<void()> notify);

    /// Queues `bytes` for sending; does nothing on a closed port.
    void Output(std::string_view bytes);
    /// Passes as much pending output to the driver as it accepts. True when none is left.
    bool FlushPending();
    /// Discards pending output, except the rest of a partly sent line.
    void DropPendingLines();
    /// Bytes queued and not yet sent; 0 on a closed port. Also calls `FlushPending`.
    std::size_t OutBufferCount();

    /// Bytes waiting to be read; 0 on a closed port. Also calls `FlushPending`.
    std::size_t InBufferCount();
    /// Reads all waiting bytes, or about `most` of them: stops after the chunk that reaches `most`.
    std::string Input(std::size_t most = static_cast<std::size_t>(-1));
    void ClearInput();

    // As in SerialPort; no effect on a closed port.
    void Break(bool on);
    void Dtr(bool asserted);
    void Rts(bool asserted);
    /// Empty on a closed port and when the device has no modem lines.
    std::optional<ModemLines> Lines();
    /// Zeros on a closed port.
    LineErrors Errors();

private:
    /// Runs one operation on the open port; a lost device closes it.
    template <typename Operation>
    void OnPort(Operation&& operation);

    SerialPorts& mPorts;
    std::unique_ptr<SerialPort> mPort;
    std::optional<PortOpenError> mOpenError;
    std::string mPending;  // accepted by Output, not yet accepted by the driver
};

}  // namespace vantor
