// Runs scripts of what a user does with tsupdate.exe and what he sees. README.md has their words.
#pragma once

#include <string>

#include "tests/Words.hpp"

namespace vantor::driver {

/// Performs `lines` on a new program with fresh settings. Throws std::runtime_error for the first
/// line that fails, and keeps a screenshot and the log of the line as `name`.
void RunSteps(const std::string& name, const Words& lines);

}  // namespace vantor::driver
