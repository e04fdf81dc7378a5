// File name patterns, matched the same way on every system that does not do it itself.
#pragma once

#include <string_view>

namespace vantor {

/// True when `name` fits `pattern`: "*" is any run of characters, "?" any one character, "*.*"
/// every name. Case of the letters A to Z is ignored; both texts are UTF-8.
bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace vantor
