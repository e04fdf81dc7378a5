#include "platform/portable/RegistryText.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

#include "platform/portable/CodePage1252.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

constexpr std::string_view kVersion5Header = "Windows Registry Editor Version 5.00";
constexpr std::string_view kBlanks = " \t\r\f\v";

constexpr std::uint32_t kRegistryExpandString = 2;  // REG_EXPAND_SZ
constexpr std::uint32_t kRegistryMultiString = 7;   // REG_MULTI_SZ

// What introduces the two hexadecimal digits of a byte, in version 4 only.
constexpr std::string_view kKeyNameEscape = "%";
constexpr std::string_view kValueNameEscape = "\\x";

bool IsPrintable(char c) {
    return c >= ' ' && c <= '~';
}

/// `number` in lower-case hexadecimal digits, at least `digits` of them.
std::string Hex(std::uint32_t number, std::size_t digits) {
    std::array<char, 8> hex{};
    const char* const end = std::to_chars(hex.data(), hex.data() + hex.size(), number, 16).ptr;
    const auto length = static_cast<std::size_t>(end - hex.data());
    return std::string(digits - std::min(digits, length), '0').append(hex.data(), length);
}

std::string HexByte(char byte) {
    return Hex(static_cast<unsigned char>(byte), 2);
}

/// The value of 1 to 8 hexadecimal digits; nothing for other text.
std::optional<std::uint32_t> HexNumber(std::string_view digits) {
    std::uint32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, number, 16);
    if (digits.size() > 8 || read.ec != std::errc() || read.ptr != end) return std::nullopt;
    return number;
}

/// The byte written as the two digits at the start of `text`.
std::optional<char> HexByteOf(std::string_view text) {
    const auto byte = text.size() < 2 ? std::nullopt : HexNumber(text.substr(0, 2));
    return byte ? std::optional(static_cast<char>(*byte)) : std::nullopt;
}

/// `text` in quotes, with the escapes of version 4.
std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (!IsPrintable(c)) {
            quoted += std::string(kValueNameEscape) + HexByte(c);
            continue;
        }
        if (c == '\\' || c == '"') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

/// True when `text` starts with an escaped backslash or quotation mark. Any other backslash is
/// literal: in files edited by hand, folder names have single backslashes.
bool StartsWithEscape(std::string_view text) {
    return text.starts_with("\\\\") || text.starts_with("\\\"");
}

/// `text` without its escapes. `hexEscape` introduces the digits of a byte; empty: there are none.
std::string Unescaped(std::string_view text, std::string_view hexEscape) {
    std::string plain;
    while (!text.empty()) {
        const bool hex = !hexEscape.empty() && text.starts_with(hexEscape);
        const auto byte = hex ? HexByteOf(text.substr(hexEscape.size())) : std::nullopt;
        if (!byte && StartsWithEscape(text)) text.remove_prefix(1);
        plain += byte.value_or(text.front());
        text.remove_prefix(byte ? hexEscape.size() + 2 : 1);
    }
    return plain;
}

/// 8-bit text; nothing when `utf8` is no UTF-8 or has a character that the code page lacks.
std::optional<std::string> AnsiOf(std::string_view utf8) {
    const CodePage1252 codePage;
    std::string ansi = codePage.ToAnsi(utf8);
    if (codePage.FromAnsi(ansi) != utf8) return std::nullopt;
    return ansi;
}

bool IsPlainString(const RegistryValue& value) {
    if (value.type != kRegistryString || value.bytes.empty() || value.bytes.back() != '\0')
        return false;
    return std::all_of(value.bytes.begin(), value.bytes.end() - 1, IsPrintable);
}

class Reader {
public:
    /// Without a byte order mark, a zero next to the header's first letter identifies UTF-16.
    explicit Reader(std::string_view file) {
        const auto zeroAt = [&](std::size_t at) { return file.size() > 1 && file[at] == '\0'; };
        const bool lowFirst = file.starts_with("\xFF\xFE") || (zeroAt(1) && !zeroAt(0));
        const bool highFirst = file.starts_with("\xFE\xFF") || (zeroAt(0) && !zeroAt(1));
        mText = file;
        if (lowFirst) mText = Utf8FromUtf16(file, ByteOrder::LowFirst);
        if (highFirst) mText = Utf8FromUtf16(file, ByteOrder::HighFirst);
        mRest = mText;
        mUnicode = SkipPrefix("\xEF\xBB\xBF") || lowFirst || highFirst;
    }

    RegistryExport Read() {
        RegistryExport result;
        bool sound = TakeHeader();
        while (sound && !mRest.empty()) {
            const std::string_view before = mRest;
            sound = TakeLine(result.keys);
            if (!sound) mRest = before;
        }
        const auto end = mText.end() - static_cast<std::ptrdiff_t>(mRest.size());
        if (!sound)
            result.damagedLine = 1 + static_cast<std::size_t>(std::count(mText.begin(), end, '\n'));
        return result;
    }

private:
    bool SkipPrefix(std::string_view prefix) {
        if (!SameText(mRest.substr(0, prefix.size()), prefix)) return false;
        mRest.remove_prefix(prefix.size());
        return true;
    }

    /// Consumes all leading characters of the set `characters` and returns them.
    std::string_view TakeAll(std::string_view characters) {
        const std::size_t end = std::min(mRest.find_first_not_of(characters), mRest.size());
        const std::string_view taken = mRest.substr(0, end);
        mRest.remove_prefix(end);
        return taken;
    }

    void SkipBlanks() { TakeAll(kBlanks); }

    std::optional<std::uint32_t> TakeHexNumber() {
        return HexNumber(TakeAll("0123456789abcdefABCDEF"));
    }

    /// Consumes blanks, a comment and the end of the line; false when the line contains more.
    bool TakeLineEnd() {
        SkipBlanks();
        if (!mRest.empty() && mRest.front() != '\n' && mRest.front() != ';') return false;
        mRest.remove_prefix(std::min(mRest.find('\n'), mRest.size()));
        SkipPrefix("\n");
        return true;
    }

    bool TakeHeader() {
        while (!mRest.empty() && TakeLineEnd()) continue;
        if (mRest.empty()) return true;
        mVersion5 = SkipPrefix(kVersion5Header);
        if (mVersion5) mUnicode = true;
        return (mVersion5 || SkipPrefix(kRegistryTextHeader)) && TakeLineEnd();
    }

    bool TakeLine(std::vector<ExportedKey>& keys) {
        if (TakeLineEnd()) return true;
        if (mRest.front() == '[') return TakeKey(keys.emplace_back().path);
        return !keys.empty() && TakeValue(keys.back().values.emplace_back());
    }

    /// The name ends at the first "]" that nothing but a comment follows.
    bool TakeKey(RegistryPath& path) {
        const std::string_view all = mRest;
        const std::string_view line = mRest.substr(0, mRest.find('\n'));
        for (std::size_t close = line.find(']'); close != std::string_view::npos;
             close = line.find(']', close + 1)) {
            mRest = all.substr(close + 1);
            if (TakeLineEnd()) return SetPath(line.substr(1, close - 1), path);
        }
        return false;
    }

    bool SetPath(std::string_view text, RegistryPath& path) const {
        const auto stored = Stored(text);
        if (!stored) return false;
        path = SplitRegistryPath(*stored);
        if (path.empty() || path.size() > kMaxRegistryDepth) return false;
        if (std::ranges::none_of(kRegistryRoots, [&](const auto& root) {
                return SameText(path.front(), root.second);
            }))
            return false;
        for (auto part = path.begin() + 1; part != path.end(); ++part) {
            if (!mVersion5) *part = Unescaped(*part, kKeyNameEscape);
            // No key can have such a name; exported again, it would name another key.
            if (part->find_first_of(std::string_view("\\\0", 2)) != std::string::npos) return false;
            if (part->size() > kMaxRegistryName) return false;
        }
        return true;
    }

    /// `text` in the registry's code page; nothing when that is impossible.
    std::optional<std::string> Stored(std::string_view text) const {
        if (text.find('\0') != std::string_view::npos) return std::nullopt;
        return mUnicode ? AnsiOf(text) : std::string(text);
    }

    bool TakeValue(RegistryValue& value) {
        if (!SkipPrefix("@")) {
            auto name = TakeQuoted(mVersion5 ? "" : kValueNameEscape);
            if (!name || name->find('\0') != std::string::npos) return false;
            value.name = std::move(*name);
        }
        SkipBlanks();
        if (!SkipPrefix("=")) return false;
        SkipBlanks();
        return TakeData(value) && TakeLineEnd();
    }

    /// A quoted string, which may span lines; `hexEscape` as for Unescaped.
    std::optional<std::string> TakeQuoted(std::string_view hexEscape) {
        if (!SkipPrefix("\"")) return std::nullopt;
        std::size_t end = 0;
        while (end < mRest.size() && mRest[end] != '"')
            end += StartsWithEscape(mRest.substr(end)) ? 2u : 1u;
        if (end >= mRest.size()) return std::nullopt;
        const auto raw = Stored(mRest.substr(0, end));
        mRest.remove_prefix(end + 1);
        return raw ? std::optional(Unescaped(*raw, hexEscape)) : std::nullopt;
    }

    bool TakeData(RegistryValue& value) {
        if (mRest.starts_with('"')) {
            auto text = TakeQuoted("");
            if (text) value.bytes = std::move(*text) + '\0';
            return text.has_value();
        }
        if (SkipPrefix("dword:")) {
            SkipBlanks();
            const auto number = TakeHexNumber();
            value.type = kRegistryDword;
            for (unsigned shift = 0; shift < 32; shift += 8)
                value.bytes += static_cast<char>(number.value_or(0) >> shift & 0xFFu);
            return number.has_value();
        }
        if (!SkipPrefix("hex")) return false;
        value.type = kRegistryBinary;
        if (SkipPrefix("(")) {
            const auto type = TakeHexNumber();
            if (!type || !SkipPrefix(")")) return false;
            value.type = *type;
        }
        if (!SkipPrefix(":") || !TakeBytes(value.bytes)) return false;
        const bool text = value.type == kRegistryString || value.type == kRegistryExpandString ||
                          value.type == kRegistryMultiString;
        if (!mVersion5 || !text) return true;
        auto ansi = AnsiOf(Utf8FromUtf16(value.bytes));
        if (ansi) value.bytes = std::move(*ansi);
        return ansi.has_value();
    }

    /// Reads comma-separated bytes; a backslash at the end of a line continues the list.
    bool TakeBytes(std::string& bytes) {
        SkipToNextByte();
        while (const auto byte = HexByteOf(mRest)) {
            bytes += *byte;
            mRest.remove_prefix(2);
            SkipBlanks();
            if (!SkipPrefix(",")) return true;
            SkipToNextByte();
        }
        return bytes.empty();
    }

    void SkipToNextByte() {
        SkipBlanks();
        while (SkipPrefix("\\") && TakeLineEnd()) SkipBlanks();
    }

    std::string mText;
    std::string_view mRest;  // of mText
    bool mUnicode = false;   // mText is UTF-8; else it is 8-bit
    bool mVersion5 = false;
};

}  // namespace

RegistryPath SplitRegistryPath(std::string_view path) {
    path = path.substr(0, path.find('\0'));
    RegistryPath parts;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('\\'), path.size());
        if (end != 0) parts.emplace_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return parts;
}

std::string EscapedKeyName(std::string_view name) {
    std::string escaped;
    for (const char c : name) {
        if (IsPrintable(c) && c != '%' && c != ']')
            escaped += c;
        else
            escaped += std::string(kKeyNameEscape) + HexByte(c);
    }
    return escaped;
}

std::string WriteValueLine(const RegistryValue& value) {
    std::string line = (value.name.empty() ? "@" : Quoted(value.name)) + '=';
    if (IsPlainString(value))
        return line + Quoted(std::string_view(value.bytes).substr(0, value.bytes.size() - 1));
    if (value.type == kRegistryDword && value.bytes.size() == 4) {
        line += "dword:";
        // Stored with the lowest byte first.
        std::for_each(value.bytes.rbegin(), value.bytes.rend(),
                      [&](char byte) { line += HexByte(byte); });
        return line;
    }
    line += value.type == kRegistryBinary ? "hex" : "hex(" + Hex(value.type, 1) + ')';
    char separator = ':';
    if (value.bytes.empty()) line += separator;
    for (const char byte : value.bytes) {
        line += separator + HexByte(byte);
        separator = ',';
    }
    return line;
}

RegistryExport ReadRegistryExport(std::string_view file) {
    return Reader(file).Read();
}

}  // namespace vantor
