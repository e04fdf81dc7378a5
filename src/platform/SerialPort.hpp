// Serial ports: opening one by name with its line parameters, and non-blocking I/O.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

enum class Parity : std::uint8_t { None, Odd, Even };

/// What stops and resumes the transmission. The driver handles it in both directions.
enum class FlowControl : std::uint8_t {
    None,
    Hardware,  ///< RTS/CTS
    Software,  ///< XON (0x11) and XOFF (0x13), which are then no data
};

/// Line parameters of an asynchronous serial frame, and the flow control.
struct LineSettings {
    std::uint32_t bitsPerSecond = 38400;
    Parity parity = Parity::None;
    std::uint8_t dataBits = 8;  ///< 7 or 8
    std::uint8_t stopBits = 1;  ///< 1 or 2
    FlowControl flowControl = FlowControl::None;

    friend bool operator==(const LineSettings&, const LineSettings&) = default;
};

/// Bits on the wire for one character: start bit, data, parity if any, stop bits.
constexpr unsigned BitsPerCharacter(const LineSettings& line) {
    return 1u + line.dataBits + (line.parity == Parity::None ? 0u : 1u) + line.stopBits;
}

/// The modem status lines; true is asserted.
struct ModemLines {
    bool cts = false;
    bool dsr = false;
    bool dcd = false;
    bool ri = false;

    friend bool operator==(const ModemLines&, const ModemLines&) = default;
};

/// Counts of reception errors since the port was opened.
struct LineErrors {
    std::uint64_t framing = 0;
    std::uint64_t parity = 0;
    std::uint64_t overrun = 0;  ///< of the device and of the driver's queue

    friend bool operator==(const LineErrors&, const LineErrors&) = default;
};

/// An open serial port, used from one thread and exclusive to this process until destroyed.
/// Raw in both directions; DTR and RTS are asserted when it opens.
/// Every operation raises RuntimeError 57 when the device is lost (an unplugged adapter,
/// a closed pseudo-terminal peer); after that the only useful operation is destruction.
class SerialPort {
public:
    /// Closes the port. Does not drain: bytes that the driver still buffers are left to it.
    virtual ~SerialPort() = default;

    /// Reads up to `into.size()` received bytes; never blocks. Returns the count,
    /// 0 when there are none.
    virtual std::size_t Read(std::span<char> into) = 0;

    /// Passes as many of `bytes` to the driver as it accepts at once; never blocks.
    /// Returns the count, 0 when its buffer is full.
    virtual std::size_t Write(std::string_view bytes) = 0;

    /// Received bytes that were not read yet (Windows: ClearCommError, cbInQue).
    virtual std::size_t InputCount() = 0;

    /// Bytes accepted by `Write` that the device has not sent yet (cbOutQue).
    virtual std::size_t OutputCount() = 0;

    /// Discards received bytes that were not read yet.
    virtual void DiscardInput() = 0;

    /// Calls `notify` on the pumping thread, inside the message pump: at each pump that finds
    /// unread bytes, and once when the device is found lost. An empty function cancels it.
    /// `notify` may read, write, and destroy this port.
    virtual void NotifyOnInput(std::function<void()> notify) = 0;

    // What the device does not have (a pseudo-terminal has none of it) has no effect.

    /// Starts or ends a break condition, which also ends when the port closes. Can destroy output
    /// that the device has not sent yet: wait for `OutputCount` 0 first. (Windows: SetCommBreak,
    /// ClearCommBreak; POSIX: TIOCSBRK, TIOCCBRK.)
    virtual void Break(bool on) = 0;

    /// Sets or clears DTR. (EscapeCommFunction; TIOCMBIS, TIOCMBIC.)
    virtual void Dtr(bool asserted) = 0;

    /// Sets or clears RTS, in the same way. No effect with hardware flow control, which controls
    /// that line.
    virtual void Rts(bool asserted) = 0;

    /// The modem status lines now; empty when the device has none. (GetCommModemStatus; TIOCMGET.)
    virtual std::optional<ModemLines> Lines() = 0;

    /// The errors so far; zeros when the driver does not count them. Windows reports only that
    /// errors of a kind have occurred since the last call to the driver: they count as one.
    /// (ClearCommError; TIOCGICOUNT.)
    virtual LineErrors Errors() = 0;
};

/// A serial port of the machine.
struct SerialPortInfo {
    std::string name;         ///< "COM3", the name that opens it
    std::string device;       ///< the system's own name ("/dev/ttyUSB0", "\Device\Serial0")
    std::string description;  ///< the system's description, may be empty
    // What is known of a USB adapter.
    std::string usbId{};                       ///< vendor and product: "0403:6001"
    std::string serialNumber{};                ///< of the adapter
    std::vector<std::string> otherNames{};     ///< the names in /dev/serial/by-id
    std::optional<std::uint32_t> latencyMs{};  ///< latency timer of the driver
};

/// Why a port does not open.
class PortOpenError : public RuntimeError {
public:
    enum class Reason : std::uint8_t { NoSuchPort, NotPermitted, InUse, LineRefused };

    /// `device` is the system's own name of the port. `who` is, if known, the group whose members
    /// may open it (NotPermitted) or the processes that have it open (InUse).
    PortOpenError(Reason reason, std::string device, std::string who = {})
        : RuntimeError(NumberOf(reason)),
          mReason(reason),
          mDevice(std::move(device)),
          mWho(std::move(who)) {}

    Reason Why() const noexcept { return mReason; }
    const std::string& Device() const noexcept { return mDevice; }
    const std::string& Who() const noexcept { return mWho; }

private:
    static constexpr ErrorNumber NumberOf(Reason reason) {
        if (reason == Reason::NoSuchPort) return ErrorNumber::DeviceUnavailable;
        if (reason == Reason::LineRefused) return ErrorNumber::InvalidCall;
        return ErrorNumber::PermissionDenied;
    }

    Reason mReason;
    std::string mDevice;
    std::string mWho;
};

/// Opens and lists the machine's serial ports.
class SerialPorts {
public:
    virtual ~SerialPorts() = default;

    /// Opens `name` ("COM1" to "COM32") with `line`. Raises PortOpenError: 68 no such port,
    /// 70 in use by another program or not permitted, 5 parameters that the port refuses.
    virtual std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) = 0;

    /// The ports present now, in numeric order of their COM names.
    virtual std::vector<SerialPortInfo> List() const = 0;

    /// The COM name that opens the port given by the user: a COM name itself, or for a device path,
    /// where the system has those, its COM name or a free one, reserved as long as this object
    /// lives. Raises RuntimeError 68 when no name is free.
    virtual std::string NameOf(const std::string& port) { return port; }
};

}  // namespace vantor
