// Sessions with random faults: several in one, in any phase, with a user who may interfere.
#pragma once

#include <cstdint>
#include <functional>

#include "rehearsal/FaultySession.hpp"

namespace vantor {

/// The plan of session `number` of the walk of `seed`: the same for the same two, anywhere.
Plan RandomPlan(std::uint64_t seed, std::uint64_t number);

}  // namespace vantor
