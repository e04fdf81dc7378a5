#include "tests/faults/Matrix.hpp"

#include <algorithm>
#include <random>

#include "tests/Words.hpp"
#include "tests/faults/Judge.hpp"

namespace vantor {
namespace {

/// What the words of a row after the name say.
decltype(Mishap::what) Parsed(const Words& words) {
    if (words.at(1) == "indicator") return ParseFault(words.at(2));
    if (words[1] == "user") return UserAct{.close = words.at(2) == "close"};
    constexpr const char* kKinds[] = {"drop", "double", "garble", "delay", "split", "unplug"};
    return LineFault{
        .kind = static_cast<LineFaultKind>(std::ranges::find(kKinds, words.at(2)) - kKinds),
        .direction = words[1] == "host" ? Direction::ToHost : Direction::ToDevice,
        .byte = std::stoul(words.at(3)),
        .ms = static_cast<std::uint32_t>(std::stoul(words.at(4)))};
}

}  // namespace

std::vector<RowResult> RunMatrix(bool compares) {
    std::ifstream table(FAULTS "/matrix.table");
    std::vector<RowResult> results;
    for (std::string line; std::getline(table, line);) {
        if (line.starts_with('#')) continue;
        const Words words = WordsOf(line);
        RowResult& result = results.emplace_back();
        result.outcomes = "| " + words.at(0) + " |";
        for (std::size_t stage = 0; stage < std::size(kStages); ++stage) {
            const Judgement judgement =
                RunSession({.mishaps = {{stage, Parsed(words)}}, .compares = compares});
            result.outcomes += " " + OutcomeName(judgement.outcome) + " |";
            if (!judgement.violation.empty())
                result.violation +=
                    words[0] + ", " + kStages[stage].name + ":\n" + judgement.violation;
        }
    }
    return results;
}

Plan RandomPlan(std::uint64_t seed, std::uint64_t number) {
    // Standard distributions differ between libraries; standard engines do not.
    std::mt19937_64 engine(seed * 0x9E3779B97F4A7C15u + number);
    // 0 to `sides` - 1.
    const auto roll = [&engine](std::size_t sides) {
        return static_cast<std::uint32_t>(engine() % sides);
    };
    const auto percent = [&roll](std::uint32_t chance) { return roll(100) < chance; };
    // Mostly up to 300 ms, sometimes around the time-outs of 20 s and 60 s.
    const auto milliseconds = [&roll] {
        const std::uint32_t range = roll(10);
        return range == 0 ? 19'000 + roll(2'000) : 1 + roll(range == 1 ? 70'000 : 300);
    };
    Plan plan;
    for (std::uint32_t left = roll(6); left > 0; --left) {
        Mishap& mishap = plan.mishaps.emplace_back();
        mishap.stage = roll(std::size(kStages));
        const std::uint32_t kind = roll(20);
        if (kind < 10)
            mishap.what = LineFault{.kind = static_cast<LineFaultKind>(roll(6)),
                                    .direction = static_cast<Direction>(roll(2)),
                                    .byte = percent(30) ? 0 : roll(percent(75) ? 24 : 400),
                                    .ms = milliseconds()};
        else if (kind < 18)
            mishap.what = Fault{
                .kind = static_cast<FaultKind>(roll(static_cast<int>(FaultKind::SplitVerdict) + 1)),
                .times = percent(10) ? 1000 : 1 + roll(5),
                .lateMs = milliseconds(),
                .silent = percent(50)};
        else
            mishap.what = UserAct{.close = kind == 18, .afterMs = milliseconds()};
    }
    if (percent(50)) plan.thinkUs = roll(percent(10) ? 200'000 : 5'000);
    if (percent(20)) plan.writeFlashUs = std::int64_t{milliseconds()} * 1000;
    plan.compares = percent(50);
    plan.line = {.bitsPerSecond = percent(50) ? 38400u : 9600u,
                 .parity = static_cast<Parity>(roll(3)),
                 .dataBits = static_cast<std::uint8_t>(7 + roll(2)),
                 .stopBits = 2};
    return plan;
}

}  // namespace vantor
