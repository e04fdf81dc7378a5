// Every fault in every stage of a session, and a random combination of several. The checks are in
// FaultySession: the report matches the received bytes, the limits hold, success means success, and
// the window remains usable.
#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "tests/faults/Matrix.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

// --- the line ----------------------------------------------------------------------------------

/// Echoes what it receives.
struct Echo : FarEnd {
    void Opened(const LineSettings&) override { open = true; }
    void Closed() override { open = false; }
    void Receive(std::string_view bytes) override { heard += bytes; }
    std::string Transmit() override { return std::exchange(heard, {}); }
    bool HungUp() const override { return false; }
    bool open = false;
    std::string heard;
};

struct Harm {
    LineFault fault;
    const char* atOnce;  ///< the part of "abcd" returned at the same instant
    const char* later;   ///< the part returned within the next 9 ms
};

TEST(FaultyLine, StrikesTheStatedByteOfTheStatedDirectionAndNoOther) {
    using enum LineFaultKind;
    for (const Direction direction : {Direction::ToDevice, Direction::ToHost})
        for (const Harm& harm :
             {Harm{{Drop, direction, 2}, "abd", ""}, Harm{{Double, direction, 2}, "abccd", ""},
              Harm{{Garble, direction, 2}, "abbd", ""}, Harm{{Delay, direction, 2, 9}, "ab", "cd"},
              Harm{{Delay, direction, 2, 10}, "ab", ""}, Harm{{Split, direction, 1, 4}, "ab", "cd"},
              Harm{{Drop, direction, 4}, "abcd", ""}, Harm{{Unplug, direction, 5}, "abcd", ""}}) {
            HeadlessClock clock;
            Echo echo;
            FaultyLine line(echo, clock);
            line.Add(harm.fault);
            line.Opened({});
            line.Receive("abcd");
            EXPECT_EQ(line.Transmit(), harm.atOnce);
            clock.Sleep(9);
            EXPECT_EQ(line.Transmit(), harm.later);
        }
}

TEST(FaultyLine, AnUnpluggedDeviceIsGoneForBothEndsAndACloseLosesNothingOnTheWayOut) {
    HeadlessClock clock;
    Echo echo;
    FaultyLine line(echo, clock);
    line.Add({LineFaultKind::Delay, Direction::ToDevice, 0, 1000});
    line.Opened({});
    line.Receive("ab");
    EXPECT_EQ(echo.heard, "");
    line.Closed();
    EXPECT_EQ(echo.heard, "ab");
    line.Opened({});
    line.Add({LineFaultKind::Unplug, Direction::ToDevice, 3});
    EXPECT_FALSE(line.HungUp());
    line.Receive("cd");
    EXPECT_TRUE(line.HungUp());
    EXPECT_FALSE(echo.open);
    EXPECT_EQ(line.Transmit(), "");
}

// --- sessions ----------------------------------------------------------------------------------

// Detects a check that accepts everything.
TEST(FaultMatrix, SomeCellsAreKnownBeforehand) {
    using enum FlashOutcome;
    const auto outcome = [](Stage stage, const std::variant<LineFault, Fault, UserAct>& what) {
        return RunSession({.mishaps = {{stage, what}}}).outcome;
    };
    const LineFault unplug{LineFaultKind::Unplug};
    EXPECT_EQ(outcome(Stage::Opening, unplug), PortNotOpen);
    EXPECT_EQ(outcome(Stage::Trav, unplug), NotInBootMonitor);
    EXPECT_EQ(outcome(Stage::Reopened, unplug), SystemLoadRefused);
    EXPECT_EQ(outcome(Stage::MiddleLine, unplug), LineRefused);
    EXPECT_EQ(outcome(Stage::Verdict, unplug), NoVerdict);
    EXPECT_EQ(outcome(Stage::Boot, unplug), Done);
    EXPECT_EQ(outcome(Stage::FirstLine, ParseFault("done@0x1000")), NothingAccepted);
    EXPECT_EQ(outcome(Stage::MiddleLine, LineFault{LineFaultKind::Garble, Direction::ToDevice, 1}),
              VerifyFailed);
    EXPECT_EQ(outcome(Stage::MiddleLine, UserAct{}), Aborted);
}

class FaultMatrixRows : public testing::TestWithParam<std::size_t> {};

TEST_P(FaultMatrixRows, InAnyStageEndsAsTheBytesSayAndLeavesTheWindowReady) {
    const MatrixRow& row = MatrixRows().at(GetParam());
    for (std::size_t stage = 0; stage < kStageNames.size(); ++stage)
        for (const bool compares : {true, false}) {
            const Judgement judgement = RunSession(CellOf(row, stage, compares));
            EXPECT_EQ(judgement.violation, "")
                << row.name << ", " << kStageNames.at(stage) << ", compares " << compares;
            // A single fault never loses a line that was acknowledged.
            EXPECT_TRUE(judgement.outcome != FlashOutcome::Done || judgement.memoryWhole ||
                        (row.unseen && !compares))
                << row.name << ", " << kStageNames.at(stage);
        }
}

INSTANTIATE_TEST_SUITE_P(Session, FaultMatrixRows,
                         testing::Range<std::size_t>(0, MatrixRows().size()));

TEST(FaultWalk, TwoThousandSessionsHoldWhateverStrikesThem) {
    constexpr std::uint64_t kSeed = 20261125;
    std::set<FlashOutcome> seen;
    for (std::uint64_t number = 0; number < 2000; ++number) {
        const Judgement judgement = RunSession(RandomPlan(kSeed, number));
        ASSERT_EQ(judgement.violation, "") << "seed " << kSeed << ", session " << number;
        seen.insert(judgement.outcome);
    }
    EXPECT_GE(seen.size(), 8u) << "of the nine ends that a session can have";
}

}  // namespace
}  // namespace vantor
