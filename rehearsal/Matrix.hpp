// The faults that are tried in every phase of a session.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "rehearsal/FaultySession.hpp"

namespace vantor {

/// A line fault strikes the first bytes of a phase. An indicator's fault arises with the phase
/// and strikes what comes next of its kind: a line fault the next command or line of the image,
/// a fault of a phase that is past nothing.
struct MatrixRow {
    std::string name;
    std::variant<LineFault, Fault, UserAct> what;
    /// A record's checksum does not cover the damage: only an indicator that compares finds it.
    bool unseen = false;
};

const std::vector<MatrixRow>& MatrixRows();

inline Plan CellOf(const MatrixRow& row, std::size_t phase, bool compares) {
    return {.mishaps = {{static_cast<Phase>(phase), row.what}}, .compares = compares};
}

}  // namespace vantor
