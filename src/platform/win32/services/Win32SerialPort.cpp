// One open serial port: overlapped I/O, non-blocking. It does not handle names and lists of ports.
#include <algorithm>
#include <optional>
#include <utility>

#include "platform/win32/services/Win32InputWatch.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Request.hpp"
#include "platform/win32/services/Win32Services.hpp"

namespace vantor {
namespace {

using enum PortOpenError::Reason;

constexpr DWORD kQueueBytes = 65536;
constexpr std::size_t kMostBytesAtOnce = kQueueBytes;

[[noreturn]] void Raise(PortOpenError::Reason reason, const std::wstring& name) {
    throw PortOpenError(reason, ToUtf8(name));
}

// Ports have no permissions by user: access denied means in use.
PortOpenError::Reason ReasonOf(DWORD systemError) {
    const bool inUse = systemError == ERROR_ACCESS_DENIED ||
                       systemError == ERROR_SHARING_VIOLATION ||
                       systemError == ERROR_ALREADY_EXISTS || systemError == ERROR_BUSY;
    return inUse ? InUse : NoSuchPort;
}

// Windows opens a port exclusively. Where it does not (a compatibility layer, a driver that
// shares), two instances of this program would read each other's acknowledgements.
Win32Handle Claim(const std::wstring& name) {
    Win32Handle claim(CreateMutexW(nullptr, FALSE, (L"Local\\Vantor serial line " + name).c_str()));
    const DWORD systemError = GetLastError();
    if (!claim.IsOpen() || systemError == ERROR_ALREADY_EXISTS) Raise(ReasonOf(systemError), name);
    return claim;
}

Win32Handle OpenDevice(const std::wstring& name) {
    Win32Handle device(CreateFileW((L"\\\\.\\" + name).c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                   nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
    if (!device.IsOpen()) Raise(ReasonOf(GetLastError()), name);
    return device;
}

std::unique_ptr<Win32Request> Transfer() {
    auto request = std::make_unique<Win32Request>();
    if (!request->done.IsOpen()) throw RuntimeError(ErrorNumber::OutOfMemory);
    return request;
}

bool IsPossible(const LineSettings& line) {
    return line.bitsPerSecond != 0 && (line.dataBits == 7 || line.dataBits == 8) &&
           (line.stopBits == 1 || line.stopBits == 2);
}

BYTE ParityCode(Parity parity) {
    switch (parity) {
        case Parity::Odd:
            return ODDPARITY;
        case Parity::Even:
            return EVENPARITY;
        case Parity::None:
            break;
    }
    return NOPARITY;
}

void SetFlowControl(FlowControl flowControl, DCB& block) {
    if (flowControl == FlowControl::None) return;
    if (flowControl == FlowControl::Hardware) {
        block.fOutxCtsFlow = TRUE;
        block.fRtsControl = RTS_CONTROL_HANDSHAKE;
    } else {
        block.fOutX = TRUE;
        block.fInX = TRUE;
        block.fTXContinueOnXoff = TRUE;
    }
    // In bytes, of received data and of free space; drivers reject limits above the size of their
    // queue, which is 4096 at first.
    block.XonLim = 2048;
    block.XoffLim = 512;
}

/// `line`, raw, DTR and RTS asserted.
DCB ControlBlock(const LineSettings& line) {
    DCB block{};
    block.DCBlength = sizeof block;
    block.fBinary = TRUE;
    block.BaudRate = line.bitsPerSecond;
    block.ByteSize = line.dataBits;
    block.Parity = ParityCode(line.parity);
    block.fParity = line.parity != Parity::None;
    block.StopBits = line.stopBits == 2 ? TWOSTOPBITS : ONESTOPBIT;
    block.fDtrControl = DTR_CONTROL_ENABLE;
    block.fRtsControl = RTS_CONTROL_ENABLE;
    // Drivers reject two equal characters even without flow control.
    block.XonChar = 0x11;
    block.XoffChar = 0x13;
    SetFlowControl(line.flowControl, block);
    // Adapters hold back short replies for some 16 ms unless one contains the event character,
    // and every acknowledgement ends with this one.
    block.EvtChar = '\r';
    return block;
}

class Win32SerialPort : public SerialPort {
public:
    Win32SerialPort(Win32MessagePump& pump, const std::wstring& name, const LineSettings& line)
        : mPump(pump), mLine(line), mClaim(Claim(name)), mDevice(OpenDevice(name)) {
        Configure(name);
        COMSTAT unused{};
        Look(unused);
        mErrors = {};  // from before
    }
    ~Win32SerialPort() override {
        StopNotifying();
        if (mBreaks) ClearCommBreak(mDevice.Get());
        if (mWriting) EndWrite();
    }

    // Requests only the bytes that are queued: on some systems a read of an empty queue blocks
    // until bytes arrive, regardless of the time-outs. The buffer belongs to the request: a request
    // that never ends must not refer to the caller's memory.
    std::size_t Read(std::span<char> into) override {
        const std::size_t count = std::min(InputCount(), into.size());
        if (count == 0) return 0;
        constexpr DWORD kReadMs = 1000;  // the bytes are already queued
        mRead->bytes.resize(count);
        DWORD got = 0;
        const bool read = ReadFile(mDevice.Get(), mRead->bytes.data(), static_cast<DWORD>(count),
                                   &got, mRead->Fresh()) != 0;
        if (!read &&
            (GetLastError() != ERROR_IO_PENDING || !EndRequest(mDevice.Get(), mRead, kReadMs) ||
             GetOverlappedResult(mDevice.Get(), &mRead->overlapped, &got, FALSE) == 0))
            RaiseGone();
        return mRead->bytes.copy(into.data(), got);
    }

    std::size_t Write(std::string_view bytes) override {
        if (mGone) RaiseGone();
        if (bytes.empty() || WriteIsPending()) return 0;
        mPump.Attend();  // a reply will follow
        mWrite->bytes.assign(bytes.substr(0, kMostBytesAtOnce));
        DWORD count = 0;
        const auto size = static_cast<DWORD>(mWrite->bytes.size());
        if (WriteFile(mDevice.Get(), mWrite->bytes.data(), size, &count, mWrite->Fresh()) != 0)
            return count;
        if (GetLastError() != ERROR_IO_PENDING) RaiseGone();
        mWriting = true;
        return size;
    }

    std::size_t InputCount() override { return Queues().cbInQue; }

    // Windows counts the bytes of a pending write. A compatibility layer may not; then the count
    // is 1.
    std::size_t OutputCount() override {
        const std::size_t count = Queues().cbOutQue;
        return WriteIsPending() ? std::max<std::size_t>(count, 1) : count;
    }

    // PurgeComm succeeds on a lost device; ClearCommError detects the loss.
    void DiscardInput() override {
        PurgeComm(mDevice.Get(), PURGE_RXCLEAR);
        Queues();
    }

    void NotifyOnInput(std::function<void()> notify) override {
        StopNotifying();
        if (!notify) return;
        mNotify = std::move(notify);
        mSource = mPump.AddSource([this] { PollInput(); });
        mWatch = std::make_unique<Win32InputWatch>(
            mDevice.Get(), [&pump = mPump, source = mSource] { pump.WakeUp(source); });
        mWatch->Arm();
    }

    void Break(bool on) override {
        static_cast<void>(on ? SetCommBreak(mDevice.Get()) : ClearCommBreak(mDevice.Get()));
        Queues();
        mBreaks = on;
    }

    void Dtr(bool asserted) override {
        EscapeCommFunction(mDevice.Get(), asserted ? SETDTR : CLRDTR);
        Queues();
    }

    void Rts(bool asserted) override {
        if (mLine.flowControl != FlowControl::Hardware)
            EscapeCommFunction(mDevice.Get(), asserted ? SETRTS : CLRRTS);
        Queues();
    }

    std::optional<ModemLines> Lines() override {
        Queues();
        DWORD lines = 0;
        if (GetCommModemStatus(mDevice.Get(), &lines) == 0) return std::nullopt;
        return ModemLines{.cts = (lines & MS_CTS_ON) != 0,
                          .dsr = (lines & MS_DSR_ON) != 0,
                          .dcd = (lines & MS_RLSD_ON) != 0,
                          .ri = (lines & MS_RING_ON) != 0};
    }

    LineErrors Errors() override {
        Queues();
        return mErrors;
    }

private:
    void Configure(const std::wstring& name) const {
        if (!IsPossible(mLine)) Raise(LineRefused, name);
        const HANDLE device = mDevice.Get();
        // A name that opens may refer to another kind of device; only a serial port answers this.
        DCB present{};
        present.DCBlength = sizeof present;
        if (GetCommState(device, &present) == 0) Raise(NoSuchPort, name);
        DCB wanted = ControlBlock(mLine);
        if (SetCommState(device, &wanted) == 0) Raise(LineRefused, name);
        // A driver with a fixed queue size keeps it.
        SetupComm(device, kQueueBytes, kQueueBytes);
        // Reads return at once with the available bytes; writes have no time-out.
        COMMTIMEOUTS timeouts{};
        timeouts.ReadIntervalTimeout = MAXDWORD;
        if (SetCommTimeouts(device, &timeouts) == 0) Raise(ReasonOf(GetLastError()), name);
        SetCommMask(device, Win32InputWatch::kEvents);  // for the adapters
        PurgeComm(device, PURGE_RXCLEAR);               // a lost device shows later
    }

    bool WriteIsPending() {
        if (!mWriting) return false;
        if (!mWrite->HasEnded()) return true;
        mWriting = false;
        DWORD count = 0;
        // Without time-outs a write ends when all its bytes are sent or the device is lost.
        if (GetOverlappedResult(mDevice.Get(), &mWrite->overlapped, &count, FALSE) == 0)
            RaiseGone();
        return false;
    }

    void EndWrite() {
        constexpr std::uint64_t kSlackMs = 100;
        constexpr std::uint64_t kMostMs = 500;
        const std::uint64_t bits = std::uint64_t{mWrite->bytes.size()} * BitsPerCharacter(mLine);
        const std::uint64_t ms = std::min(bits * 1000 / mLine.bitsPerSecond + kSlackMs, kMostMs);
        EndRequest(mDevice.Get(), mWrite, static_cast<DWORD>(ms));
    }

    // The callback may destroy this port: a copy is called, and no member is used after it.
    void PollInput() {
        mWatch->Arm();  // before the check, so that no byte arrives unnoticed in between
        COMSTAT queues{};
        const bool gone = mGone || !Look(queues);
        if (!gone && queues.cbInQue == 0) return;
        mPump.Attend();
        constexpr DWORD kPlenty = 1024;
        if (queues.cbInQue >= kPlenty) mPump.PollAgain();
        const std::function<void()> notify = mNotify;
        if (gone) {
            mGone = true;
            StopNotifying();
        }
        notify();
    }

    void StopNotifying() {
        mWatch.reset();
        if (mSource != 0) mPump.RemoveSource(std::exchange(mSource, 0));
        mNotify = nullptr;
    }

    /// One system call, since wait loops call this; false when the device is lost. The call clears
    /// the flags of errors, so each is counted here.
    bool Look(COMSTAT& queues) {
        DWORD flags = 0;
        if (ClearCommError(mDevice.Get(), &flags, &queues) == 0) return false;
        if ((flags & CE_FRAME) != 0) ++mErrors.framing;
        if ((flags & CE_RXPARITY) != 0) ++mErrors.parity;
        if ((flags & (CE_OVERRUN | CE_RXOVER)) != 0) ++mErrors.overrun;
        return true;
    }

    COMSTAT Queues() {
        COMSTAT queues{};
        if (mGone || !Look(queues)) RaiseGone();
        return queues;
    }

    [[noreturn]] void RaiseGone() {
        mGone = true;
        throw RuntimeError(ErrorNumber::DeviceIO);
    }

    Win32MessagePump& mPump;
    LineSettings mLine;
    Win32Handle mClaim;
    Win32Handle mDevice;
    std::unique_ptr<Win32Request> mRead = Transfer();
    std::unique_ptr<Win32Request> mWrite = Transfer();
    bool mWriting = false;
    std::function<void()> mNotify;
    Win32MessagePump::SourceId mSource = 0;
    std::unique_ptr<Win32InputWatch> mWatch;
    bool mGone = false;
    bool mBreaks = false;
    LineErrors mErrors;
};

}  // namespace

std::unique_ptr<SerialPort> OpenWin32SerialPort(Win32MessagePump& pump, const std::wstring& name,
                                                const LineSettings& line) {
    return std::make_unique<Win32SerialPort>(pump, name, line);
}

}  // namespace vantor
