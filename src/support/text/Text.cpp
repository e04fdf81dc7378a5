#include "support/text/Text.hpp"

#include <algorithm>

namespace vantor {
namespace {

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

std::string_view TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), Upper);
    return upper;
}

bool SameText(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, Upper, Upper);
}

std::string_view FolderOf(std::string_view path) {
    return path.substr(0, path.find_last_of("\\/") + 1);
}

std::string_view FileNameOf(std::string_view path) {
    return path.substr(FolderOf(path).size());
}

}  // namespace vantor
