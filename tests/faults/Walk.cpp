#include "tests/faults/Walk.hpp"

#include <random>

namespace vantor {
namespace {

/// Standard distributions differ between libraries; standard engines do not.
class Dice {
public:
    Dice(std::uint64_t seed, std::uint64_t number) : mEngine(seed * 0x9E3779B97F4A7C15u + number) {}

    /// 0 to `sides` - 1.
    std::uint32_t Roll(std::uint32_t sides) {
        return static_cast<std::uint32_t>(mEngine() % sides);
    }
    bool Percent(std::uint32_t chance) { return Roll(100) < chance; }
    /// Mostly up to 300 ms, sometimes around the time-outs of 20 s and 60 s.
    std::uint32_t Milliseconds() {
        switch (Roll(10)) {
            case 0:
                return 19'000 + Roll(2'000);
            case 1:
                return 1 + Roll(70'000);
            default:
                return 1 + Roll(300);
        }
    }

private:
    std::mt19937_64 mEngine;
};

LineFault RandomLineFault(Dice& dice) {
    return {.kind = static_cast<LineFaultKind>(dice.Roll(6)),
            .direction = static_cast<Direction>(dice.Roll(2)),
            .byte = dice.Percent(30) ? 0 : dice.Roll(dice.Percent(75) ? 24 : 400),
            .ms = dice.Milliseconds()};
}

Fault RandomIndicatorFault(Dice& dice) {
    constexpr auto kKinds = static_cast<std::uint32_t>(FaultKind::SplitVerdict) + 1;
    Fault fault;
    fault.kind = static_cast<FaultKind>(dice.Roll(kKinds));
    fault.times = dice.Percent(10) ? 1000 : 1 + dice.Roll(5);
    fault.lateMs = dice.Milliseconds();
    fault.silent = dice.Percent(50);
    return fault;
}

}  // namespace

Plan RandomPlan(std::uint64_t seed, std::uint64_t number) {
    Dice dice(seed, number);
    Plan plan;
    for (std::uint32_t left = dice.Roll(6); left > 0; --left) {
        Mishap mishap{.stage = static_cast<Stage>(dice.Roll(kStageNames.size())), .what = {}};
        const std::uint32_t kind = dice.Roll(20);
        if (kind < 10)
            mishap.what = RandomLineFault(dice);
        else if (kind < 18)
            mishap.what = RandomIndicatorFault(dice);
        else
            mishap.what = UserAct{.close = kind == 18, .afterMs = dice.Milliseconds()};
        plan.mishaps.push_back(mishap);
    }
    if (dice.Percent(50)) plan.thinkUs = dice.Roll(dice.Percent(10) ? 200'000 : 5'000);
    if (dice.Percent(20)) plan.writeFlashUs = std::int64_t{dice.Milliseconds()} * 1000;
    plan.compares = dice.Percent(50);
    plan.line = {.bitsPerSecond = dice.Percent(50) ? 38400u : 9600u,
                 .parity = static_cast<Parity>(dice.Roll(3)),
                 .dataBits = static_cast<std::uint8_t>(7 + dice.Roll(2)),
                 .stopBits = 2};
    return plan;
}

}  // namespace vantor
