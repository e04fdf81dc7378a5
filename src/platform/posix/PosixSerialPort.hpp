// One open serial port on POSIX: raw termios, non-blocking. It does not handle names and
// lists of ports.
#pragma once

#include <functional>
#include <string>

#include "platform/SerialPort.hpp"
#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixMessagePump.hpp"

namespace vantor {

/// Closing can block until the driver has sent what it still buffers: POSIX has no way to leave
/// those bytes to the driver without discarding them.
class PosixSerialPort : public SerialPort {
public:
    /// Opens the device file `device`. `pump` must outlive the port. Raises 68, 70 or 5 like
    /// SerialPorts::Open.
    PosixSerialPort(PosixMessagePump& pump, const std::string& device, const LineSettings& line);
    ~PosixSerialPort() override;
    PosixSerialPort(const PosixSerialPort&) = delete;
    PosixSerialPort& operator=(const PosixSerialPort&) = delete;

    std::size_t Read(std::span<char> into) override;
    std::size_t Write(std::string_view bytes) override;
    std::size_t InputCount() override;
    std::size_t OutputCount() override;
    void DiscardInput() override;
    void NotifyOnInput(std::function<void()> notify) override;

private:
    void SetLine(const LineSettings& line) const;
    void RaiseModemLines() const;
    void TakeInput();
    [[noreturn]] void RaiseGone();
    void PollInput();
    void StopNotifying();

    PosixMessagePump& mPump;
    PosixHandle mDevice;
    std::function<void()> mNotify;
    SourceId mSource = 0;
    std::string mInput;  // read from the device, but not yet by the caller
    bool mGone = false;
};

}  // namespace vantor
