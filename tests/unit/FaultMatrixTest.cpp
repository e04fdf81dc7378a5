// Every fault in every phase of a session, and a random walk through several at once. What is
// looked at stands in bench/reliability: the report fits the bytes received, the limits hold,
// success means success, and the window can go on.
#include <gtest/gtest.h>

#include <set>

#include "bench/reliability/Matrix.hpp"
#include "bench/reliability/Walk.hpp"
#include "tests/unit/ReportingPlatform.hpp"

namespace vantor {
namespace {

class FaultMatrix : public testing::TestWithParam<std::size_t> {};

TEST_P(FaultMatrix, InAnyPhaseEndsAsTheBytesSayAndLeavesTheWindowReady) {
    const MatrixRow& row = MatrixRows().at(GetParam());
    for (std::size_t phase = 0; phase < kPhaseNames.size(); ++phase)
        for (const bool compares : {true, false}) {
            const Verdict verdict = RunSession(CellOf(row, phase, compares));
            EXPECT_EQ(verdict.violation, "")
                << row.name << ", " << kPhaseNames.at(phase) << ", compares " << compares;
            // One fault alone never costs a line that was acknowledged.
            EXPECT_TRUE(verdict.outcome != FlashOutcome::Done || verdict.memoryWhole ||
                        (row.unseen && !compares))
                << row.name << ", " << kPhaseNames.at(phase);
        }
}

INSTANTIATE_TEST_SUITE_P(Session, FaultMatrix, testing::Range<std::size_t>(0, MatrixRows().size()));

TEST(FaultWalk, TwoThousandSessionsHoldWhateverStrikesThem) {
    constexpr std::uint64_t kSeed = 20261125;
    std::set<FlashOutcome> seen;
    for (std::uint64_t number = 0; number < 2000; ++number) {
        const Verdict verdict = RunSession(RandomPlan(kSeed, number));
        ASSERT_EQ(verdict.violation, "") << "seed " << kSeed << ", session " << number;
        seen.insert(verdict.outcome);
    }
    EXPECT_GE(seen.size(), 8u) << "of the nine ends that a session can have";
}

}  // namespace
}  // namespace vantor
