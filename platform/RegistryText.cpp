#include "platform/RegistryText.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace vantor {
namespace {

constexpr std::array<std::pair<RegistryRoot, std::string_view>, 2> kRootNames = {
    {{RegistryRoot::CurrentUser, "HKEY_CURRENT_USER"},
     {RegistryRoot::LocalMachine, "HKEY_LOCAL_MACHINE"}}};

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::string_view kBlanks = " \t\r\f\v";

bool IsPrintable(char c) {
    return c >= ' ' && c <= '~';
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

bool SkipPrefix(std::string_view& text, std::string_view prefix) {
    if (!EqualIgnoringCase(text.substr(0, prefix.size()), prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
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

/// Parses `text` as hexadecimal; empty unless it consists of `minimum` to 8 digits.
std::optional<std::uint32_t> HexNumber(std::string_view text, std::size_t minimum) {
    if (text.size() < minimum || text.size() > 8) return std::nullopt;
    std::uint32_t number = 0;
    for (const char c : text) {
        const std::size_t digit = kDigits.find(Lower(c));
        if (digit == std::string_view::npos) return std::nullopt;
        number = number << 4u | static_cast<std::uint32_t>(digit);
    }
    return number;
}

std::string DecodedPart(std::string_view text) {
    std::string part;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto code = text[at] == '%' ? HexNumber(text.substr(at + 1, 2), 2) : std::nullopt;
        part += code ? static_cast<char>(*code) : text[at];
        if (code) at += 2;
    }
    return part;
}

/// `text` in quotes; bytes that the format cannot hold become "\x" and two digits.
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

/// Removes the quoted string at the start of `line`; `hexEscapes` allows "\x".
/// Any other backslash is literal: people write folder names without doubling it.
std::optional<std::string> TakeQuoted(std::string_view& line, bool hexEscapes) {
    if (line.empty() || line.front() != '"') return std::nullopt;
    std::string text;
    for (std::size_t at = 1; at < line.size(); ++at) {
        const char c = line[at];
        if (c == '"') {
            line.remove_prefix(at + 1);
            return text;
        }
        const char next = c == '\\' && at + 1 < line.size() ? line[at + 1] : '\0';
        const bool hex = hexEscapes && next == 'x';
        const auto code = hex ? HexNumber(line.substr(at + 2, 2), 2) : std::nullopt;
        const bool escaped = next == '\\' || next == '"';
        text += code ? static_cast<char>(*code) : escaped ? next : c;
        at += code ? 3u : escaped ? 1u : 0u;
    }
    return std::nullopt;
}

std::optional<std::string> HexBytes(std::string_view list) {
    std::string bytes;
    list = Trimmed(list);
    while (!list.empty()) {
        const std::size_t comma = list.find(',');
        const std::string_view item = Trimmed(list.substr(0, comma));
        const auto byte = item.size() == 2 ? HexNumber(item, 2) : std::nullopt;
        if (!byte) return std::nullopt;
        bytes += static_cast<char>(*byte);
        if (comma == std::string_view::npos) break;
        list = Trimmed(list.substr(comma + 1));
        if (list.empty()) return std::nullopt;
    }
    return bytes;
}

std::string LittleEndian(std::uint32_t number) {
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(number >> shift & 0xFFu);
    return bytes;
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

std::optional<RegistryValue> ReadData(std::string name, std::string_view data) {
    if (!data.empty() && data.front() == '"') {
        std::optional<std::string> text = TakeQuoted(data, false);
        if (!text || !data.empty()) return std::nullopt;
        return RegistryValue{std::move(name), kRegistryString, std::move(*text) + '\0'};
    }
    if (SkipPrefix(data, "dword:")) {
        const auto number = HexNumber(Trimmed(data), 1);
        if (!number) return std::nullopt;
        return RegistryValue{std::move(name), kRegistryDword, LittleEndian(*number)};
    }
    if (!SkipPrefix(data, "hex")) return std::nullopt;
    const std::size_t colon = data.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    std::optional<std::uint32_t> type = kRegistryBinary;
    if (colon != 0) {
        if (colon < 3 || data.front() != '(' || data[colon - 1] != ')') return std::nullopt;
        type = HexNumber(data.substr(1, colon - 2), 1);
    }
    std::optional<std::string> bytes = HexBytes(data.substr(colon + 1));
    if (!type || !bytes) return std::nullopt;
    return RegistryValue{std::move(name), *type, std::move(*bytes)};
}

std::string_view TakePhysicalLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = Trimmed(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

/// True when `line` is a value whose bytes continue on the next line. A string that ends with
/// a backslash is damaged instead, and must not consume the next line.
bool IsWrapped(std::string_view line) {
    if (line.empty() || line.back() != '\\') return false;
    if (line.front() == '@')
        line.remove_prefix(1);
    else if (!TakeQuoted(line, true))
        return false;
    line = Trimmed(line);
    if (!SkipPrefix(line, "=")) return false;
    line = Trimmed(line);
    return SkipPrefix(line, "hex");
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

std::string WriteKeyLine(const RegistryPath& path) {
    std::string line = "[";
    for (const auto& [root, name] : kRootNames)
        if (root == path.root) line += name;
    for (const std::string& part : path.parts) {
        line += '\\';
        for (const char c : part)
            line += IsPrintable(c) && c != '%' ? std::string(1, c) : '%' + HexByte(c);
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

std::optional<RegistryPath> ReadKeyLine(std::string_view line) {
    if (line.size() < 2 || line.front() != '[' || line.back() != ']') return std::nullopt;
    std::vector<std::string> parts = SplitRegistryPath(line.substr(1, line.size() - 2));
    if (parts.empty()) return std::nullopt;
    for (const auto& [root, name] : kRootNames) {
        if (!EqualIgnoringCase(parts.front(), name)) continue;
        RegistryPath path{root, {}};
        for (std::size_t i = 1; i < parts.size(); ++i) path.parts.push_back(DecodedPart(parts[i]));
        // No key can have such a name; a later export would write it as another key.
        for (const std::string& part : path.parts)
            if (part.find_first_of(std::string_view("\\\0", 2)) != std::string::npos)
                return std::nullopt;
        return path;
    }
    return std::nullopt;
}

std::optional<RegistryValue> ReadValueLine(std::string_view line) {
    std::optional<std::string> name = std::string();
    if (!line.empty() && line.front() == '@')
        line.remove_prefix(1);
    else
        name = TakeQuoted(line, true);
    line = Trimmed(line);
    if (!name || !SkipPrefix(line, "=")) return std::nullopt;
    return ReadData(std::move(*name), Trimmed(line));
}

std::string TakeRegistryLine(std::string_view& text) {
    std::string line(TakePhysicalLine(text));
    bool wrapped = IsWrapped(line);
    while (wrapped) {
        line.pop_back();
        std::string_view rest = text;
        const std::string_view next = TakePhysicalLine(rest);
        if (next.find_first_not_of("0123456789abcdefABCDEF, \t\\") != std::string_view::npos) break;
        line += next;
        text = rest;
        wrapped = !next.empty() && next.back() == '\\';
    }
    return line;
}

}  // namespace vantor
