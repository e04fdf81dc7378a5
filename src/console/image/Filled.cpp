#include "console/image/Filled.hpp"

#include <string_view>

namespace vantor {
namespace {

void Replace(std::string& text, std::string_view mark, const std::string& value) {
    if (const std::size_t at = text.find(mark); at != std::string::npos)
        text.replace(at, mark.size(), value);
}

}  // namespace

std::string Filled(std::string text, const std::string& first, const std::string& second) {
    // The second placeholder first: the first value may contain one itself.
    Replace(text, "%2", second);
    Replace(text, "%1", first);
    return text;
}

}  // namespace vantor
