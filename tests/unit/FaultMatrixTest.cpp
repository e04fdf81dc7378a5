// Every fault in every stage of a session, and a random combination of several. The checks are in
// tests/faults/Judge: the report matches the received bytes, the limits hold, success means
// success, and the window remains usable.
#include <gtest/gtest.h>

#include <set>

#include "tests/Words.hpp"
#include "tests/faults/Matrix.hpp"

namespace vantor {
namespace {

TEST(FaultMatrix, AFaultInAnyStageEndsAsTheBytesSayAndLeavesTheWindowReady) {
    const std::string report = ContentOf(TABLES "/../../../docs/reliability.md");
    for (const bool compares : {true, false}) {
        const std::vector<RowResult> results = RunMatrix(compares);
        EXPECT_FALSE(results.empty());
        for (const RowResult& row : results) {
            EXPECT_EQ(row.violation, "");
            // As scripts/reliability wrote them. Detects a check that accepts everything, and a
            // line that injects nothing.
            EXPECT_TRUE(!compares || report.find(row.outcomes + "\n") != std::string::npos)
                << row.outcomes;
        }
    }
}

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
