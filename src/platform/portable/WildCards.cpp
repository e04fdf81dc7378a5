#include "platform/portable/WildCards.hpp"

#include <cstddef>

namespace vantor {
namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// The end of the UTF-8 character at `at`.
std::size_t CharacterEnd(std::string_view text, std::size_t at) {
    do ++at;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0u) == 0x80u);
    return at;
}

}  // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) {
    if (pattern == "*.*") return true;
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos;  // the last "*", and the end of what it matches
    std::size_t starEnd = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            starEnd = n;
        } else if (p < pattern.size() && pattern[p] == '?') {
            n = CharacterEnd(name, n);
            ++p;
        } else if (p < pattern.size() && Lower(pattern[p]) == Lower(name[n])) {
            ++n;
            ++p;
        } else if (star != std::string_view::npos) {
            starEnd = CharacterEnd(name, starEnd);
            n = starEnd;
            p = star + 1;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace vantor
