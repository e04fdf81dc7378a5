// Practice without hardware: a virtual indicator in this process, connected to every port.
#pragma once

#include <string>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/headless/HeadlessSerial.hpp"
#include "platform/portable/PolledPump.hpp"
#include "simulator/VirtualIndicator.hpp"

namespace vantor {

class CAppSettings;

/// Sleeps in waits until the indicator has something to say.
class PracticePump : public PolledPump {
public:
    /// Both outlive the pump.
    PracticePump(Clock& clock, const VirtualIndicator& indicator)
        : PolledPump(clock), mIndicator(indicator) {}

    void AwaitInput() override;

private:
    const VirtualIndicator& mIndicator;
};

class Practice {
public:
    /// An indicator that starts at the speed of the settings, expects `image`, paces its line like
    /// a real one and has `faults`. Raises RuntimeError 5 with the reason for an unknown fault.
    Practice(Clock& clock, const CAppSettings& settings, const std::vector<std::string>& faults,
             const std::string& image);

    MessagePump& Pump() { return mPump; }
    SerialPorts& Ports() { return mPorts; }

private:
    VirtualIndicator mIndicator;
    PracticePump mPump;
    HeadlessSerialPorts mPorts;
    IndicatorFarEnd mFarEnd;
};

}  // namespace vantor
