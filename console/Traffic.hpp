// What passes over a serial line, told to those who watch it. The program that uses the line
// does not notice.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/SerialPort.hpp"

namespace vantor {

/// Told of everything right after it has happened.
class TrafficListener {
public:
    virtual ~TrafficListener() = default;
    virtual void Opened(const std::string& name, const LineSettings& line) = 0;
    virtual void Refused(const std::string& /*name*/, const LineSettings& /*line*/,
                         const std::string& /*reason*/) {}
    virtual void Closed() = 0;
    virtual void Sent(std::string_view bytes) = 0;
    virtual void Received(std::string_view bytes) = 0;
    /// The program has thrown away what had arrived: `bytes`, or nothing.
    virtual void Discarded(std::string_view bytes) = 0;
};

/// Serial ports that forward to others and tell of every transfer.
class WatchedSerialPorts : public SerialPorts {
public:
    /// All outlive the ports.
    WatchedSerialPorts(SerialPorts& inner, std::vector<TrafficListener*> listeners)
        : mInner(inner), mListeners(std::move(listeners)) {}

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override;
    std::vector<SerialPortInfo> List() const override { return mInner.List(); }

private:
    SerialPorts& mInner;
    std::vector<TrafficListener*> mListeners;
};

}  // namespace vantor
