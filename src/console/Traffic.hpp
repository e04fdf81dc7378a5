// Reports the traffic of a serial line to listeners. Transparent to the program that uses the line.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/SerialPort.hpp"

namespace vantor {

/// Called right after each event.
class TrafficListener {
public:
    virtual ~TrafficListener() = default;
    virtual void Opened(const std::string& name, const LineSettings& line) = 0;
    virtual void Refused(const std::string& /*name*/, const LineSettings& /*line*/,
                         const std::string& /*reason*/) {}
    virtual void Closed() = 0;
    virtual void Sent(std::string_view bytes) = 0;
    virtual void Received(std::string_view bytes) = 0;
    /// The program has discarded its received input: `bytes`, or nothing.
    virtual void Discarded(std::string_view bytes) = 0;
};

/// Serial ports that forward to others and report every transfer.
class WatchedSerialPorts : public SerialPorts {
public:
    /// All must outlive the ports.
    WatchedSerialPorts(SerialPorts& inner, std::vector<TrafficListener*> listeners)
        : mInner(inner), mListeners(std::move(listeners)) {}

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override;
    std::vector<SerialPortInfo> List() const override { return mInner.List(); }

private:
    SerialPorts& mInner;
    std::vector<TrafficListener*> mListeners;
};

}  // namespace vantor
