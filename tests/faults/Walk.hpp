// Random fault plans: several faults per session, in any stage, with user aborts and closes.
#pragma once

#include <cstdint>
#include <functional>

#include "tests/faults/FaultySession.hpp"

namespace vantor {

/// The plan of session `number` for `seed`; deterministic on every platform.
Plan RandomPlan(std::uint64_t seed, std::uint64_t number);

}  // namespace vantor
