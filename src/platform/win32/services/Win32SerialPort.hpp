// One open serial port on Windows: overlapped I/O, non-blocking. It does not handle
// names and lists of ports.
#pragma once

#include <memory>
#include <string>

#include "platform/SerialPort.hpp"
#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32InputWatch.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Request.hpp"

namespace vantor {

/// One write is pending at a time; until it has ended `Write` accepts nothing. Closing waits for
/// it as long as its bytes take on the line: the system would discard the rest. If the driver
/// does not end a cancelled request, the port is given up within some seconds.
class Win32SerialPort : public SerialPort {
public:
    /// Opens the port `name` ("COM3"). `pump` must outlive the port. Raises 68,
    /// 70 or 5 like SerialPorts::Open.
    Win32SerialPort(Win32MessagePump& pump, const std::wstring& name, const LineSettings& line);
    ~Win32SerialPort() override;
    Win32SerialPort(const Win32SerialPort&) = delete;
    Win32SerialPort& operator=(const Win32SerialPort&) = delete;

    std::size_t Read(std::span<char> into) override;
    std::size_t Write(std::string_view bytes) override;
    std::size_t InputCount() override;
    std::size_t OutputCount() override;
    void DiscardInput() override;
    void NotifyOnInput(std::function<void()> notify) override;

private:
    void SetLine(const LineSettings& line) const;
    bool Look(COMSTAT& queues) const;
    COMSTAT Queues();
    bool WriteIsPending();
    void EndWrite();
    [[noreturn]] void RaiseGone();
    void PollInput();
    void StopNotifying();

    Win32MessagePump& mPump;
    Win32Handle mClaim;
    Win32Handle mDevice;
    std::unique_ptr<Win32Request> mRead;
    std::unique_ptr<Win32Request> mWrite;
    bool mWriting = false;
    unsigned mBitsPerCharacter;
    std::uint32_t mBitsPerSecond;
    std::function<void()> mNotify;
    Win32MessagePump::SourceId mSource = 0;
    std::unique_ptr<Win32InputWatch> mWatch;
    bool mGone = false;
};

}  // namespace vantor
