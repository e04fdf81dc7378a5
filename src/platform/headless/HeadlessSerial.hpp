// In-memory serial ports: each connects to a far end in the same process. For tests,
// and for practice without hardware.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Clock.hpp"
#include "platform/SerialPort.hpp"
#include "platform/portable/PolledPump.hpp"
#include "simulator/VirtualIndicator.hpp"

namespace vantor {

/// The device at the other end of a line.
class FarEnd {
public:
    virtual ~FarEnd() = default;
    virtual void Opened(const LineSettings& line) = 0;
    virtual void Closed() = 0;
    virtual void Receive(std::string_view bytes) = 0;
    /// Bytes sent since the last call.
    virtual std::string Transmit() = 0;
    /// True when the device is lost.
    virtual bool HungUp() const = 0;

    // A device without these lines ignores them. Each opening asserts DTR and RTS and is not told
    // by a call.
    virtual void Break(bool /*on*/) {}
    virtual void Dtr(bool /*asserted*/) {}
    virtual void Rts(bool /*asserted*/) {}
    virtual std::optional<ModemLines> Lines() const { return std::nullopt; }
    /// Of what the host has received since it opened the port.
    virtual LineErrors Errors() const { return {}; }
};

/// Connects a virtual indicator as far end, with the time of `clock`.
class IndicatorFarEnd : public FarEnd {
public:
    /// Both outlive the far end.
    IndicatorFarEnd(VirtualIndicator& indicator, const Clock& clock)
        : mIndicator(indicator), mClock(clock) {}

    void Opened(const LineSettings& line) override { mIndicator.HostLine(line, Now()); }
    void Closed() override { mIndicator.HostClosed(Now()); }
    void Receive(std::string_view bytes) override { mIndicator.Receive(bytes, Now()); }
    std::string Transmit() override { return mIndicator.Transmit(Now()); }
    bool HungUp() const override { return mIndicator.HungUp(); }

private:
    Micros Now() const { return Micros{mClock.Milliseconds()} * 1000; }

    VirtualIndicator& mIndicator;
    const Clock& mClock;
};

class HeadlessSerialPorts : public SerialPorts {
public:
    explicit HeadlessSerialPorts(PolledPump& pump) : mPump(pump) {}

    /// Adds the port `name`, connected to `farEnd`, which must outlive its use.
    void Plug(const std::string& name, FarEnd& farEnd) { mSockets[name].farEnd = &farEnd; }
    /// Removes the port, even while it is open.
    void Unplug(const std::string& name) { mSockets.erase(name); }
    /// Simulates another program that opens or closes the port.
    void Hold(const std::string& name, bool held) { mSockets[name].busy = held; }
    bool IsOpen(const std::string& name) const;
    /// Maximum bytes per write, to simulate a driver with a full buffer.
    void LimitWrites(std::size_t bytes) { mWriteLimit = bytes; }

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override;
    std::vector<SerialPortInfo> List() const override;

private:
    friend class HeadlessSerialPort;
    struct Socket {
        FarEnd* farEnd = nullptr;
        bool busy = false;
        bool open = false;
    };

    PolledPump& mPump;
    std::map<std::string, Socket> mSockets;
    std::size_t mWriteLimit = static_cast<std::size_t>(-1);
};

}  // namespace vantor
