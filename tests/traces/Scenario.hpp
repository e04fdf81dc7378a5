// Runs a scenario: a short script of what the user, the indicator and the system do, and the trace
// of what the program does. See README.md for the words of a script.
#pragma once

#include <string>

namespace vantor::traces {

/// Runs `script` on a new program and returns the trace. Throws std::runtime_error with the line
/// that is not understood or never came about.
std::string RunScenario(const std::string& script);

/// Returns a script of `tests/terminal` with the lines that state what each action changed written
/// anew. `inPieces` delivers received bytes one by one. Throws std::exception for a line that is
/// not understood.
std::string RunTerminal(const std::string& script, bool inPieces);

}  // namespace vantor::traces
