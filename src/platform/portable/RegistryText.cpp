#include "platform/portable/RegistryText.hpp"

#include <algorithm>
#include <cstddef>

namespace vantor {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

bool IsPrintable(char c) {
    return c >= ' ' && c <= '~';
}

std::string Hex(std::uint32_t number, unsigned digits) {
    std::string hex;
    for (unsigned shift = digits * 4; shift != 0; shift -= 4)
        hex += kDigits[number >> (shift - 4) & 0xFu];
    return hex;
}

std::string HexByte(char byte) {
    return Hex(static_cast<unsigned char>(byte), 2);
}

/// `text` in quotes; what the format cannot hold becomes "\x" and two digits.
std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (!IsPrintable(c)) {
            quoted += "\\x" + HexByte(c);
            continue;
        }
        if (c == '\\' || c == '"') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

std::uint32_t FromLittleEndian(std::string_view bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = bytes.size(); i != 0; --i)
        number = number << 8u | static_cast<unsigned char>(bytes[i - 1]);
    return number;
}

bool IsPlainString(const RegistryValue& value) {
    if (value.type != kRegistryString || value.bytes.empty() || value.bytes.back() != '\0')
        return false;
    return std::all_of(value.bytes.begin(), value.bytes.end() - 1, IsPrintable);
}

}  // namespace

std::vector<std::string> SplitRegistryPath(std::string_view path) {
    path = path.substr(0, path.find('\0'));
    std::vector<std::string> parts;
    while (!path.empty()) {
        const std::size_t end = path.find('\\');
        if (end != 0) parts.emplace_back(path.substr(0, end));
        path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    }
    return parts;
}

std::string WriteKeyLine(const RegistryKeyPath& path) {
    std::string line = "[";
    for (const auto& [root, name] : kRegistryRoots)
        if (root == path.root) line += name;
    for (const std::string& part : path.parts) {
        line += '\\';
        for (const char c : part)
            line += IsPrintable(c) && c != '%' && c != ']' ? std::string(1, c) : '%' + HexByte(c);
    }
    return line + ']';
}

std::string WriteValueLine(const RegistryValue& value) {
    std::string line = (value.name.empty() ? "@" : Quoted(value.name)) + '=';
    if (IsPlainString(value))
        return line + Quoted(std::string_view(value.bytes).substr(0, value.bytes.size() - 1));
    if (value.type == kRegistryDword && value.bytes.size() == 4)
        return line + "dword:" + Hex(FromLittleEndian(value.bytes), 8);
    line += "hex";
    if (value.type != kRegistryBinary) {
        const std::string type = Hex(value.type, 8);
        line += '(' + type.substr(std::min<std::size_t>(type.find_first_not_of('0'), 7)) + ')';
    }
    char separator = ':';
    if (value.bytes.empty()) line += separator;
    for (const char byte : value.bytes) {
        line += separator + HexByte(byte);
        separator = ',';
    }
    return line;
}

}  // namespace vantor
