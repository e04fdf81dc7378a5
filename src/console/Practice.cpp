#include "console/Practice.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "settings/CAppSettings.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

constexpr int kHighestPort = 32;

IndicatorOptions OptionsFor(const CAppSettings& settings, const std::vector<std::string>& faults,
                            const std::string& image) {
    IndicatorOptions options;
    options.bitsPerSecond = static_cast<std::uint32_t>(ToInt32(settings.BaudRate()));
    options.paced = true;
    try {
        for (const std::string& fault : faults) options.faults.push_back(ParseFault(fault));
    } catch (const std::invalid_argument& error) {
        throw RuntimeError(ErrorNumber::InvalidCall, error.what());
    }
    // It rejects an invalid image line by line, as a real indicator would.
    Ignoring([&] { options.expected = FlashMemory::FromRecords(image); });
    return options;
}

}  // namespace

void PracticePump::AwaitInput() {
    constexpr Micros kMicrosPerMs = 1000;
    constexpr Micros kMostMs = 10;
    Micros ms = kMostMs;
    if (const std::optional<Micros> due = mIndicator.NextDue())
        ms = (*due + kMicrosPerMs - 1) / kMicrosPerMs - Micros{mClock.Milliseconds()};
    // At least 1: what is due already was not enough to end the wait.
    mClock.Sleep(static_cast<std::uint32_t>(std::clamp(ms, Micros{1}, kMostMs)));
}

Practice::Practice(Clock& clock, const CAppSettings& settings,
                   const std::vector<std::string>& faults, const std::string& image)
    : mIndicator(OptionsFor(settings, faults, image)),
      mPump(clock, mIndicator),
      mPorts(mPump),
      mFarEnd(mIndicator, clock) {
    for (int n = 1; n <= kHighestPort; ++n) mPorts.Plug("COM" + std::to_string(n), mFarEnd);
}

}  // namespace vantor
