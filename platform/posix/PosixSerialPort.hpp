// One open serial line off Windows: raw termios, never waiting. Names and lists of ports are not
// its business.
#pragma once

#include <functional>
#include <string>

#include "platform/SerialPort.hpp"
#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixMessagePump.hpp"

namespace vantor {

/// Closing can last as long as the driver takes to send what it still holds: the system offers
/// no way to leave the bytes behind that does not throw them away.
class PosixSerialPort : public SerialPort {
public:
    /// Opens the device file `device`. `pump` must outlive the port. Raises 68, 70 or 5 as
    /// SerialPorts::Open does.
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
    std::string mInput;  // what was read from the device but not yet by our user
    bool mGone = false;
};

}  // namespace vantor
