#include "tests/faults/Matrix.hpp"

#include <random>

namespace vantor {
namespace {

void AddLineFaults(std::vector<MatrixRow>& rows) {
    using enum LineFaultKind;
    const auto addFor = [&rows](const std::string& way, Direction direction, std::size_t middle) {
        const auto add = [&](const char* name, LineFaultKind kind, std::size_t byte,
                             std::uint32_t ms = 0) {
            rows.push_back({name + way, LineFault{kind, direction, byte, ms}});
        };
        add("dropped", Drop, middle);
        add("doubled", Double, middle);
        add("garbled", Garble, middle);
        add("0.5 s late", Delay, middle, 500);
        add("25 s late", Delay, middle, 25000);
        add("split", Split, 0, 30);
        add("unplugged at once", Unplug, 0);
        add("unplugged", Unplug, middle);
    };
    // In the middle of a command and in a record's length; in "OK".
    addFor(" to the indicator", Direction::ToDevice, 3);
    addFor(" to the program", Direction::ToHost, 1);
    // The type digit after the S: an S1 data record becomes an S0 header.
    rows.push_back({"record type garbled", LineFault{Garble, Direction::ToDevice, 1}, true});
}

void AddIndicatorFaults(std::vector<MatrixRow>& rows) {
    for (const char* text : {"nak@0",        "nak@0x4",           "silent@0",      "silent@0x4",
                             "late=500@0",   "late=25000@0",      "drop@0",        "garble@0",
                             "garble@0x4",   "noise@0",           "split@0",       "done@0",
                             "done@0x1000",  "verify@0",          "verify@0x1000", "hangup@0",
                             "no-trav",      "no-trav=silent",    "no-baud",       "no-baud=silent",
                             "no-sysload",   "no-sysload=silent", "verify-failed", "no-verdict",
                             "split-verdict"}) {
        std::string name = text;
        if (const std::size_t at = name.find("@0"); at != std::string::npos) name.erase(at, 2);
        rows.push_back({name, ParseFault(text)});
    }
}

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
        const std::uint32_t range = Roll(10);
        if (range == 0) return 19'000 + Roll(2'000);
        return 1 + Roll(range == 1 ? 70'000 : 300);
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

const std::vector<MatrixRow>& MatrixRows() {
    static const std::vector<MatrixRow> kRows = [] {
        std::vector<MatrixRow> rows;
        AddLineFaults(rows);
        AddIndicatorFaults(rows);
        rows.push_back({"abort pressed", UserAct{.close = false, .afterMs = 1}});
        rows.push_back({"window closed", UserAct{.close = true, .afterMs = 1}});
        return rows;
    }();
    return kRows;
}

RowResult RunRow(const MatrixRow& row, bool compares) {
    RowResult result{.outcomes = "| " + row.name + " |", .violation = {}};
    for (std::size_t stage = 0; stage < kStageNames.size(); ++stage) {
        const Judgement judgement =
            RunSession({.mishaps = {{static_cast<Stage>(stage), row.what}}, .compares = compares});
        result.outcomes += " " + OutcomeName(judgement.outcome) + " |";
        std::string violation = judgement.violation;
        if (judgement.outcome == FlashOutcome::Done && !judgement.memoryWhole &&
            (compares || !row.unseen))
            violation += "an acknowledged line is lost\n";
        if (!violation.empty())
            result.violation += row.name + ", " + kStageNames.at(stage) + ":\n" + violation;
    }
    return result;
}

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
