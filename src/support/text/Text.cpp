#include "support/text/Text.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

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

std::optional<std::int64_t> ParseInteger(std::string_view text) {
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return value;
}

std::string HexDigits(std::uint8_t byte) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    return {kDigits[byte >> 4u], kDigits[byte & 0xFu]};
}

std::string Escaped(std::string_view bytes, std::string_view named) {
    std::string text;
    for (const char c : bytes) {
        if (c == '\\') {
            text += "\\\\";
        } else if (c >= ' ' && c <= '~') {
            text += c;
        } else if (named.find(c) != std::string_view::npos) {
            text.append("\\").append(1, c == '\r' ? 'r' : c == '\n' ? 'n' : 't');
        } else {
            text += "\\x" + HexDigits(static_cast<std::uint8_t>(c));
        }
    }
    return text;
}

std::string_view FolderOf(std::string_view path) {
    return path.substr(0, path.find_last_of("\\/") + 1);
}

std::string_view FileNameOf(std::string_view path) {
    return path.substr(FolderOf(path).size());
}

}  // namespace vantor
