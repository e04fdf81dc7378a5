// The plans of sessions under faults: each fault in every stage, and random combinations.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "tests/faults/FaultySession.hpp"

namespace vantor {

/// A `LineFault` affects the first bytes of the stage. A `Fault` of the indicator is injected at
/// the start of the stage: a line fault affects the next command or image line; a stage fault has
/// no effect when its stage is over.
struct MatrixRow {
    std::string name;
    std::variant<LineFault, Fault, UserAct> what;
    /// The record checksum does not cover the corruption: only a comparing indicator detects it.
    bool unseen = false;
};

const std::vector<MatrixRow>& MatrixRows();

struct RowResult {
    std::string outcomes;   ///< a row of the report
    std::string violation;  ///< the rules broken, with the stage of each; empty when none
};

/// Runs `row` in every stage, with an indicator that compares its memory or does not. A single
/// fault never loses a line that was acknowledged.
RowResult RunRow(const MatrixRow& row, bool compares);

/// The plan of session `number` for `seed`, with several faults, aborts and closes; deterministic
/// on every platform.
Plan RandomPlan(std::uint64_t seed, std::uint64_t number);

}  // namespace vantor
