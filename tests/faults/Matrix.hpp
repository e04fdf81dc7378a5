// The plans of sessions under faults: each fault in every stage, and random combinations.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/faults/FaultySession.hpp"

namespace vantor {

struct RowResult {
    std::string outcomes;   ///< a row of the report
    std::string violation;  ///< the rules broken, with the stage of each; empty when none
};

/// Runs each row of matrix.table in every stage, with an indicator that compares its memory or does
/// not.
std::vector<RowResult> RunMatrix(bool compares);

/// The plan of session `number` for `seed`, with several faults, aborts and closes; deterministic
/// on every platform.
Plan RandomPlan(std::uint64_t seed, std::uint64_t number);

}  // namespace vantor
