#include "platform/portable/RegistryExport.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "platform/portable/CodePage1252.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

constexpr std::string_view kVersion5Header = "Windows Registry Editor Version 5.00";
constexpr std::string_view kBlanks = " \t\r\f\v";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";

constexpr std::uint32_t kRegistryExpandString = 2;  // REG_EXPAND_SZ
constexpr std::uint32_t kRegistryMultiString = 7;   // REG_MULTI_SZ

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) { return Lower(x) == Lower(y); });
}

/// The value of 1 to 8 hexadecimal digits; nothing for other text.
std::optional<std::uint32_t> HexNumber(std::string_view digits) {
    if (digits.empty() || digits.size() > 8) return std::nullopt;
    std::uint32_t number = 0;
    for (const char c : digits) {
        const std::size_t digit = kHexDigits.find(Lower(c));
        if (digit == std::string_view::npos) return std::nullopt;
        number = number << 4u | static_cast<std::uint32_t>(digit);
    }
    return number;
}

/// The byte written as the two digits at `at`.
std::optional<char> HexByteAt(std::string_view text, std::size_t at) {
    const std::string_view digits = text.size() < at + 2 ? "" : text.substr(at, 2);
    const auto byte = HexNumber(digits);
    return byte ? std::optional(static_cast<char>(*byte)) : std::nullopt;
}

std::string LittleEndian(std::uint32_t number) {
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(number >> shift & 0xFFu);
    return bytes;
}

/// 8-bit text; nothing when `utf8` is no UTF-8 or has a character that the code page lacks.
std::optional<std::string> AnsiOf(std::string_view utf8) {
    const CodePage1252 codePage;
    std::string ansi = codePage.ToAnsi(utf8);
    if (codePage.FromAnsi(ansi) != utf8) return std::nullopt;
    return ansi;
}

/// A key's name without the escapes of WriteKeyLine.
std::string Unescaped(std::string_view text) {
    std::string part;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto code = text[at] == '%' ? HexByteAt(text, at + 1) : std::nullopt;
        part += code.value_or(text[at]);
        if (code) at += 2;
    }
    return part;
}

class Reader {
public:
    explicit Reader(std::string_view file) { Decode(file); }

    RegistryExport Read();

private:
    void Decode(std::string_view file);
    bool SkipPrefix(std::string_view prefix);
    void SkipBlanks();
    bool TakeLineEnd();
    bool TakeHeader();
    bool TakeLine(std::vector<ExportedKey>& keys);
    bool TakeKey(RegistryKeyPath& path);
    bool TakeValue(RegistryValue& value);
    bool TakeData(RegistryValue& value);
    bool TakeBytes(std::string& bytes);
    void SkipToNextByte();
    std::optional<std::string> TakeQuoted(bool hexEscapes);
    std::string_view TakeHexDigits();
    bool SetPath(std::string_view text, RegistryKeyPath& path) const;
    std::optional<std::string> Stored(std::string_view text) const;

    std::string mText;
    std::string_view mRest;  // of mText
    bool mUnicode = false;   // mText is UTF-8; else it is 8-bit
    bool mVersion5 = false;
};

/// Without a byte order mark, a zero next to the header's first letter identifies UTF-16.
void Reader::Decode(std::string_view file) {
    const auto zeroAt = [&](std::size_t at) { return file.size() > 1 && file[at] == '\0'; };
    mUnicode = true;
    if (file.starts_with("\xFF\xFE"))
        mText = Utf8FromUtf16(file.substr(2), ByteOrder::LowFirst);
    else if (file.starts_with("\xFE\xFF"))
        mText = Utf8FromUtf16(file.substr(2), ByteOrder::HighFirst);
    else if (file.starts_with("\xEF\xBB\xBF"))
        mText = file.substr(3);
    else if (zeroAt(1) && !zeroAt(0))
        mText = Utf8FromUtf16(file, ByteOrder::LowFirst);
    else if (zeroAt(0) && !zeroAt(1))
        mText = Utf8FromUtf16(file, ByteOrder::HighFirst);
    else {
        mText = file;
        mUnicode = false;
    }
    mRest = mText;
}

RegistryExport Reader::Read() {
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

bool Reader::SkipPrefix(std::string_view prefix) {
    if (!EqualIgnoringCase(mRest.substr(0, prefix.size()), prefix)) return false;
    mRest.remove_prefix(prefix.size());
    return true;
}

void Reader::SkipBlanks() {
    mRest.remove_prefix(std::min(mRest.find_first_not_of(kBlanks), mRest.size()));
}

/// Consumes blanks, a comment and the end of the line; false when the line contains more.
bool Reader::TakeLineEnd() {
    SkipBlanks();
    if (!mRest.empty() && mRest.front() != '\n' && mRest.front() != ';') return false;
    const std::size_t end = mRest.find('\n');
    mRest.remove_prefix(end == std::string_view::npos ? mRest.size() : end + 1);
    return true;
}

bool Reader::TakeHeader() {
    while (!mRest.empty() && TakeLineEnd()) continue;
    if (mRest.empty()) return true;
    mVersion5 = SkipPrefix(kVersion5Header);
    if (mVersion5) mUnicode = true;
    return (mVersion5 || SkipPrefix(kRegistryTextHeader)) && TakeLineEnd();
}

bool Reader::TakeLine(std::vector<ExportedKey>& keys) {
    if (TakeLineEnd()) return true;
    if (mRest.front() == '[') {
        keys.emplace_back();
        return TakeKey(keys.back().path);
    }
    if (keys.empty()) return false;
    keys.back().values.emplace_back();
    return TakeValue(keys.back().values.back());
}

/// The name ends at the first "]" that nothing but a comment follows.
bool Reader::TakeKey(RegistryKeyPath& path) {
    const std::string_view all = mRest;
    const std::string_view line = mRest.substr(0, mRest.find('\n'));
    for (std::size_t close = line.find(']'); close != std::string_view::npos;
         close = line.find(']', close + 1)) {
        mRest = all.substr(close + 1);
        if (TakeLineEnd()) return SetPath(line.substr(1, close - 1), path);
    }
    return false;
}

bool Reader::SetPath(std::string_view text, RegistryKeyPath& path) const {
    const auto stored = Stored(text);
    if (!stored) return false;
    path.parts = SplitRegistryPath(*stored);
    if (path.parts.empty() || path.parts.size() > kMaxRegistryDepth) return false;
    const auto root = std::ranges::find_if(kRegistryRoots, [&](const auto& entry) {
        return EqualIgnoringCase(path.parts.front(), entry.second);
    });
    if (root == kRegistryRoots.end()) return false;
    path.root = root->first;
    path.parts.erase(path.parts.begin());
    for (std::string& part : path.parts) {
        if (!mVersion5) part = Unescaped(part);
        // No key can have such a name; exported again, it would name another key.
        if (part.find_first_of(std::string_view("\\\0", 2)) != std::string::npos) return false;
        if (part.size() > kMaxRegistryName) return false;
    }
    return true;
}

/// `text` in the registry's code page; nothing when that is impossible.
std::optional<std::string> Reader::Stored(std::string_view text) const {
    if (text.find('\0') != std::string_view::npos) return std::nullopt;
    return mUnicode ? AnsiOf(text) : std::string(text);
}

bool Reader::TakeValue(RegistryValue& value) {
    if (!SkipPrefix("@")) {
        auto name = TakeQuoted(!mVersion5);
        if (!name || name->find('\0') != std::string::npos) return false;
        value.name = std::move(*name);
    }
    SkipBlanks();
    if (!SkipPrefix("=")) return false;
    SkipBlanks();
    return TakeData(value) && TakeLineEnd();
}

/// A quoted string, which may span lines. `hexEscapes` enables "\x". Any other backslash is
/// literal: in files edited by hand, folder names have single backslashes.
std::optional<std::string> Reader::TakeQuoted(bool hexEscapes) {
    if (!SkipPrefix("\"")) return std::nullopt;
    const auto escapes = [](std::string_view text, std::size_t at) {
        return text[at] == '\\' && at + 1 < text.size() &&
               (text[at + 1] == '\\' || text[at + 1] == '"');
    };
    std::size_t end = 0;
    while (end < mRest.size() && mRest[end] != '"') end += escapes(mRest, end) ? 2u : 1u;
    if (end >= mRest.size()) return std::nullopt;
    const auto raw = Stored(mRest.substr(0, end));
    mRest.remove_prefix(end + 1);
    if (!raw) return std::nullopt;
    std::string text;
    for (std::size_t at = 0; at < raw->size(); ++at) {
        const bool hex = hexEscapes && raw->compare(at, 2, "\\x") == 0;
        const auto code = hex ? HexByteAt(*raw, at + 2) : std::nullopt;
        const bool escaped = escapes(*raw, at);
        text += code ? *code : escaped ? (*raw)[at + 1] : (*raw)[at];
        at += code ? 3u : escaped ? 1u : 0u;
    }
    return text;
}

std::string_view Reader::TakeHexDigits() {
    const std::size_t end = std::min(mRest.find_first_not_of(kHexDigits), mRest.size());
    const std::string_view digits = mRest.substr(0, end);
    mRest.remove_prefix(end);
    return digits;
}

bool Reader::TakeData(RegistryValue& value) {
    if (mRest.starts_with('"')) {
        auto text = TakeQuoted(false);
        if (text) value.bytes = std::move(*text) + '\0';
        return text.has_value();
    }
    if (SkipPrefix("dword:")) {
        SkipBlanks();
        const auto number = HexNumber(TakeHexDigits());
        value.type = kRegistryDword;
        value.bytes = LittleEndian(number.value_or(0));
        return number.has_value();
    }
    if (!SkipPrefix("hex")) return false;
    value.type = kRegistryBinary;
    if (SkipPrefix("(")) {
        const auto type = HexNumber(TakeHexDigits());
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
bool Reader::TakeBytes(std::string& bytes) {
    SkipToNextByte();
    while (const auto byte = HexByteAt(mRest, 0)) {
        bytes += *byte;
        mRest.remove_prefix(2);
        SkipBlanks();
        if (!SkipPrefix(",")) return true;
        SkipToNextByte();
    }
    return bytes.empty();
}

void Reader::SkipToNextByte() {
    SkipBlanks();
    while (SkipPrefix("\\") && TakeLineEnd()) SkipBlanks();
}

}  // namespace

RegistryExport ReadRegistryExport(std::string_view file) {
    return Reader(file).Read();
}

}  // namespace vantor
