// The completion of the command line for shells, from the table of options.
#pragma once

#include <string>

namespace vantor {

class StringTable;

/// The script for `shell`, "bash" or "zsh"; empty for any other.
std::string CompletionFor(const std::string& shell, const StringTable& strings);

}  // namespace vantor
