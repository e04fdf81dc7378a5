// One open serial line off Windows: raw termios, never waiting. Names and lists of ports are not
// its business.
#pragma once

#include <memory>
#include <string>

#include "platform/PolledPump.hpp"
#include "platform/SerialPort.hpp"
#include "platform/posix/PosixHandle.hpp"

namespace vantor {

/// Closing can last as long as the driver takes to send what it still holds: the system offers
/// no way to leave the bytes behind that does not throw them away.
class PosixSerialPort : public SerialPort {
public:
    /// Opens the device file `device`. `pump` must outlive the port. Raises 68, 70 or 5 as
    /// SerialPorts::Open does.
    PosixSerialPort(PolledPump& pump, const std::string& device, const LineSettings& line);
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
    enum class State { Quiet, HasInput, Gone };

    void SetLine(const LineSettings& line) const;
    void RaiseModemLines() const;
    State Look() const;
    std::size_t QueueCount(unsigned long request);
    [[noreturn]] void RaiseGone();
    void PollInput();
    void StopNotifying();

    PolledPump& mPump;
    PosixHandle mDevice;
    std::function<void()> mNotify;
    SourceId mSource = 0;
    bool mGone = false;
};

}  // namespace vantor
