#include "platform/win32/services/Win32SerialPort.hpp"

#include <algorithm>
#include <utility>

#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

constexpr DWORD kQueueBytes = 65536;
constexpr std::size_t kMostBytesAtOnce = kQueueBytes;

[[noreturn]] void RaiseOpenError(DWORD systemError) {
    switch (systemError) {
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
        case ERROR_ALREADY_EXISTS:
        case ERROR_BUSY:
            throw RuntimeError(ErrorNumber::PermissionDenied);
        default:
            throw RuntimeError(ErrorNumber::DeviceUnavailable);
    }
}

// Windows opens a port exclusively. Where it does not (a compatibility layer, a driver that
// shares), two instances of this program would read each other's acknowledgements.
Win32Handle Claim(const std::wstring& name) {
    Win32Handle claim(CreateMutexW(nullptr, FALSE, (L"Local\\Vantor serial line " + name).c_str()));
    const DWORD systemError = GetLastError();
    if (!claim.IsOpen() || systemError == ERROR_ALREADY_EXISTS) RaiseOpenError(systemError);
    return claim;
}

Win32Handle OpenDevice(const std::wstring& name) {
    Win32Handle device(CreateFileW((L"\\\\.\\" + name).c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                   nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
    if (!device.IsOpen()) RaiseOpenError(GetLastError());
    return device;
}

std::unique_ptr<Win32Request> Transfer() {
    auto request = std::make_unique<Win32Request>(false);
    if (!request->done.IsOpen()) throw RuntimeError(ErrorNumber::OutOfMemory);
    return request;
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

// Settings that the caller does not choose: raw, no flow control, DTR and RTS asserted.
DCB RawBlock() {
    DCB block{};
    block.DCBlength = sizeof block;
    block.fBinary = TRUE;
    block.fDtrControl = DTR_CONTROL_ENABLE;
    block.fRtsControl = RTS_CONTROL_ENABLE;
    // Unused without flow control, but drivers reject two equal characters.
    block.XonChar = 0x11;
    block.XoffChar = 0x13;
    // Adapters hold back short replies for some 16 ms unless one contains the event character,
    // and every acknowledgement ends with this one.
    block.EvtChar = '\r';
    return block;
}

}  // namespace

Win32SerialPort::Win32SerialPort(Win32MessagePump& pump, const std::wstring& name,
                                 const LineSettings& line)
    : mPump(pump),
      mClaim(Claim(name)),
      mDevice(OpenDevice(name)),
      mRead(Transfer()),
      mWrite(Transfer()),
      mBitsPerCharacter(BitsPerCharacter(line)),
      mBitsPerSecond(line.bitsPerSecond) {
    SetLine(line);
    // A driver with a fixed queue size keeps it.
    static_cast<void>(SetupComm(mDevice.Get(), kQueueBytes, kQueueBytes));
    // Reads return at once with the available bytes; writes have no time-out.
    COMMTIMEOUTS timeouts{};
    timeouts.ReadIntervalTimeout = MAXDWORD;
    if (SetCommTimeouts(mDevice.Get(), &timeouts) == 0) RaiseOpenError(GetLastError());
    static_cast<void>(SetCommMask(mDevice.Get(), EV_RXCHAR | EV_RXFLAG));  // for the adapters
    // A lost device shows later.
    static_cast<void>(PurgeComm(mDevice.Get(), PURGE_RXCLEAR));
}

Win32SerialPort::~Win32SerialPort() {
    StopNotifying();
    if (mWriting) EndWrite();
}

void Win32SerialPort::SetLine(const LineSettings& line) const {
    if (line.bitsPerSecond == 0 || (line.dataBits != 7 && line.dataBits != 8) ||
        (line.stopBits != 1 && line.stopBits != 2))
        throw RuntimeError(ErrorNumber::InvalidCall);
    // A name that opens may refer to another kind of device; only a serial port answers this.
    DCB present{};
    present.DCBlength = sizeof present;
    if (GetCommState(mDevice.Get(), &present) == 0)
        throw RuntimeError(ErrorNumber::DeviceUnavailable);
    DCB wanted = RawBlock();
    wanted.BaudRate = line.bitsPerSecond;
    wanted.ByteSize = line.dataBits;
    wanted.Parity = ParityCode(line.parity);
    wanted.fParity = line.parity != Parity::None;
    wanted.StopBits = line.stopBits == 2 ? TWOSTOPBITS : ONESTOPBIT;
    if (SetCommState(mDevice.Get(), &wanted) == 0) throw RuntimeError(ErrorNumber::InvalidCall);
}

/// One system call, since wait loops call this; false when the device is lost.
bool Win32SerialPort::Look(COMSTAT& queues) const {
    DWORD lineErrors = 0;  // the protocol detects damaged replies itself
    return ClearCommError(mDevice.Get(), &lineErrors, &queues) != 0;
}

COMSTAT Win32SerialPort::Queues() {
    COMSTAT queues{};
    if (mGone || !Look(queues)) RaiseGone();
    return queues;
}

void Win32SerialPort::RaiseGone() {
    mGone = true;
    throw RuntimeError(ErrorNumber::DeviceIO);
}

// Requests only the bytes that are queued: on some systems a read of an empty queue blocks until
// bytes arrive, regardless of the time-outs. The buffer belongs to the request: a request that
// never ends must not refer to the caller's memory.
std::size_t Win32SerialPort::Read(std::span<char> into) {
    const std::size_t count = std::min(InputCount(), into.size());
    if (count == 0) return 0;
    constexpr DWORD kReadMs = 1000;  // the bytes are already queued
    mRead->bytes.resize(count);
    DWORD got = 0;
    const bool read = ReadFile(mDevice.Get(), mRead->bytes.data(), static_cast<DWORD>(count), &got,
                               mRead->Fresh()) != 0;
    if (!read &&
        (GetLastError() != ERROR_IO_PENDING || !EndRequest(mDevice.Get(), mRead, kReadMs) ||
         GetOverlappedResult(mDevice.Get(), &mRead->overlapped, &got, FALSE) == 0))
        RaiseGone();
    return mRead->bytes.copy(into.data(), got);
}

std::size_t Win32SerialPort::Write(std::string_view bytes) {
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

bool Win32SerialPort::WriteIsPending() {
    if (!mWriting) return false;
    if (!mWrite->HasEnded()) return true;
    mWriting = false;
    DWORD count = 0;
    // Without time-outs a write ends when all its bytes are sent or the device is lost.
    if (GetOverlappedResult(mDevice.Get(), &mWrite->overlapped, &count, FALSE) == 0) RaiseGone();
    return false;
}

void Win32SerialPort::EndWrite() {
    constexpr std::uint64_t kSlackMs = 100;
    constexpr std::uint64_t kMostMs = 500;
    const std::uint64_t bits = std::uint64_t{mWrite->bytes.size()} * mBitsPerCharacter;
    const std::uint64_t ms = std::min(bits * 1000 / mBitsPerSecond + kSlackMs, kMostMs);
    static_cast<void>(EndRequest(mDevice.Get(), mWrite, static_cast<DWORD>(ms)));
}

std::size_t Win32SerialPort::InputCount() {
    return Queues().cbInQue;
}

// Windows counts the bytes of a pending write. A compatibility layer may not; then the count is 1.
std::size_t Win32SerialPort::OutputCount() {
    const std::size_t count = Queues().cbOutQue;
    return WriteIsPending() ? std::max<std::size_t>(count, 1) : count;
}

// PurgeComm succeeds on a lost device; ClearCommError detects the loss.
void Win32SerialPort::DiscardInput() {
    static_cast<void>(PurgeComm(mDevice.Get(), PURGE_RXCLEAR));
    static_cast<void>(Queues());
}

void Win32SerialPort::NotifyOnInput(std::function<void()> notify) {
    StopNotifying();
    if (!notify) return;
    mNotify = std::move(notify);
    mSource = mPump.AddSource([this] { PollInput(); });
    mWatch = std::make_unique<Win32InputWatch>(
        mDevice.Get(), [&pump = mPump, source = mSource] { pump.WakeUp(source); });
    mWatch->Arm();
}

void Win32SerialPort::StopNotifying() {
    mWatch.reset();
    if (mSource != 0) mPump.RemoveSource(std::exchange(mSource, 0));
    mNotify = nullptr;
}

// The callback may destroy this port: a copy is called, and no member is used after it.
void Win32SerialPort::PollInput() {
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

}  // namespace vantor
