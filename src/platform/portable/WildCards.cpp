#include "platform/portable/WildCards.hpp"

#include <cstddef>

#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {

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
            n += FirstCharacter(name.substr(n)).size();
            ++p;
        } else if (p < pattern.size() && SameText(pattern.substr(p, 1), name.substr(n, 1))) {
            ++n;
            ++p;
        } else if (star != std::string_view::npos) {
            starEnd += FirstCharacter(name.substr(starEnd)).size();
            n = starEnd;
            p = star + 1;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace vantor
