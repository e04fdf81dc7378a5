// Runs a scenario: a short script of what the user, the indicator and the system do, and the trace
// of what the program does. See README.md for the words of a script.
#pragma once

#include <string>

namespace vantor::traces {

/// Runs `script` on a new program and returns the trace. Throws std::runtime_error with the line
/// that is not understood or never came about.
std::string RunScenario(const std::string& script);

}  // namespace vantor::traces
