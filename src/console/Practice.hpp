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

class Practice {
public:
    /// An indicator that starts at the speed of the settings, expects `image`, paces its line like
    /// a real one and has `faults`. Raises RuntimeError 5 with the reason for an unknown fault.
    Practice(Clock& clock, const CAppSettings& settings, const std::vector<std::string>& faults,
             const std::string& image);

    MessagePump& Pump() { return mPump; }
    SerialPorts& Ports() { return mPorts; }

private:
    PolledPump mPump;
    HeadlessSerialPorts mPorts;
    VirtualIndicator mIndicator;
    IndicatorFarEnd mFarEnd;
};

}  // namespace vantor
