#include "platform/headless/HeadlessSerial.hpp"

#include <algorithm>
#include <functional>
#include <utility>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

class HeadlessSerialPort : public SerialPort {
public:
    HeadlessSerialPort(HeadlessSerialPorts& ports, std::string name, FlowControl flowControl)
        : mPorts(ports), mName(std::move(name)), mFlowControl(flowControl) {}

    ~HeadlessSerialPort() override {
        NotifyOnInput({});
        const auto socket = mPorts.mSockets.find(mName);
        if (socket == mPorts.mSockets.end()) return;
        socket->second.open = false;
        FarEnd* const device = socket->second.farEnd;
        if (mBreaks && device) device->Break(false);
        if (device) device->Closed();
    }
    HeadlessSerialPort(const HeadlessSerialPort&) = delete;
    HeadlessSerialPort& operator=(const HeadlessSerialPort&) = delete;

    std::size_t Read(std::span<char> into) override {
        Arrive();
        const std::size_t count = std::min(into.size(), mArrived.size());
        std::copy_n(mArrived.begin(), count, into.begin());
        mArrived.erase(0, count);
        return count;
    }

    std::size_t Write(std::string_view bytes) override {
        if (mFlowControl != FlowControl::None && IsHeld()) return 0;
        const std::string_view taken = bytes.substr(0, mPorts.mWriteLimit);
        Device().Receive(taken);
        return taken.size();
    }

    std::size_t InputCount() override {
        Arrive();
        return mArrived.size();
    }

    std::size_t OutputCount() override {
        Device();
        return 0;
    }

    void DiscardInput() override {
        Arrive();
        mArrived.clear();
    }

    void NotifyOnInput(std::function<void()> notify) override {
        if (mSource != 0) mPorts.mPump.RemoveSource(std::exchange(mSource, 0));
        mGoneTold = false;
        if (!notify) return;
        mSource = mPorts.mPump.AddSource([this, call = std::move(notify)] {
            // The callback may destroy this port.
            if (HasNews()) call();
        });
    }

    void Break(bool on) override {
        Device().Break(on);
        mBreaks = on;
    }
    void Dtr(bool asserted) override { Device().Dtr(asserted); }
    void Rts(bool asserted) override {
        FarEnd& device = Device();
        if (mFlowControl != FlowControl::Hardware) device.Rts(asserted);
    }
    std::optional<ModemLines> Lines() override { return Device().Lines(); }
    LineErrors Errors() override { return Device().Errors(); }

private:
    /// The far end; raises when the device is lost.
    FarEnd& Device() {
        const auto socket = mPorts.mSockets.find(mName);
        if (socket == mPorts.mSockets.end() || !socket->second.farEnd ||
            socket->second.farEnd->HungUp())
            throw RuntimeError(ErrorNumber::DeviceIO);
        return *socket->second.farEnd;
    }

    void Arrive() {
        for (const char byte : Device().Transmit()) {
            const bool isOff = byte == kXoff;
            if (mFlowControl == FlowControl::Software && (isOff || byte == kXon))
                mStopped = isOff;
            else
                mArrived += byte;
        }
    }

    /// True when flow control stops the transmission.
    bool IsHeld() {
        Arrive();
        const auto lines = Device().Lines();
        return mStopped || (mFlowControl == FlowControl::Hardware && lines && !lines->cts);
    }

    bool HasNews() {
        try {
            return InputCount() > 0;
        } catch (const RuntimeError&) {
            return !std::exchange(mGoneTold, true);
        }
    }

    static constexpr char kXon = 0x11;
    static constexpr char kXoff = 0x13;

    HeadlessSerialPorts& mPorts;
    std::string mName;
    FlowControl mFlowControl;
    std::string mArrived;
    SourceId mSource = 0;
    bool mGoneTold = false;
    bool mStopped = false;  // by XOFF
    bool mBreaks = false;
};

bool HeadlessSerialPorts::IsOpen(const std::string& name) const {
    const auto socket = mSockets.find(name);
    return socket != mSockets.end() && socket->second.open;
}

std::unique_ptr<SerialPort> HeadlessSerialPorts::Open(const std::string& name,
                                                      const LineSettings& line) {
    const auto socket = mSockets.find(name);
    using enum PortOpenError::Reason;
    if (socket == mSockets.end() || !socket->second.farEnd || socket->second.farEnd->HungUp())
        throw PortOpenError(NoSuchPort, name);
    if (socket->second.busy || socket->second.open) throw PortOpenError(InUse, name);
    if (line.bitsPerSecond == 0) throw PortOpenError(LineRefused, name);
    socket->second.open = true;
    socket->second.farEnd->Opened(line);
    return std::make_unique<HeadlessSerialPort>(*this, name, line.flowControl);
}

std::vector<SerialPortInfo> HeadlessSerialPorts::List() const {
    std::vector<SerialPortInfo> ports;
    for (const auto& entry : mSockets) ports.push_back({entry.first, entry.first, "in memory"});
    // Among names with the same prefix, the shorter one has the smaller number.
    std::ranges::stable_sort(ports, {},
                             [](const SerialPortInfo& port) { return port.name.size(); });
    return ports;
}

}  // namespace vantor
