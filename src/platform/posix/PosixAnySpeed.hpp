// Speeds of a serial line for which POSIX has no code.
#pragma once

#include <cstdint>

namespace vantor {

/// Sets both directions of the terminal `descriptor` to `bitsPerSecond` (Linux: TCSETS2 with
/// BOTHER). False when the driver refuses it or sets a speed that is more than 2 % off.
bool SetAnySpeed(int descriptor, std::uint32_t bitsPerSecond);

}  // namespace vantor
