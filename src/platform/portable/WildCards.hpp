// Wildcard matching of file names, for systems that do not provide it.
#pragma once

#include <string_view>

namespace vantor {

/// True when `name` matches `pattern`: "*" is any run of characters, "?" any one character,
/// "*.*" every name. ASCII case is ignored; both strings are UTF-8.
bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace vantor
