#include "console/Json.hpp"

#include <cstddef>

#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

std::string Quoted(std::string_view utf8) {
    std::string text = "\"";
    while (!utf8.empty()) {
        const char32_t character = TakeCodePoint(utf8);
        if (character == '"' || character == '\\') {
            text += '\\';
            text += static_cast<char>(character);
        } else if (character == '\n') {
            text += "\\n";
        } else if (character < ' ' || character == 0x7f) {
            text += "\\u00" + HexDigits(static_cast<std::uint8_t>(character));
        } else {
            AppendUtf8(text, character);
        }
    }
    return text + '"';
}

/// Reads what `JsonObject` writes.
class Reader {
public:
    explicit Reader(std::string_view text) : mRest(text) {}

    bool Take(char c) {
        while (mRest.starts_with(' ')) mRest.remove_prefix(1);
        if (!mRest.starts_with(c)) return false;
        mRest.remove_prefix(1);
        return true;
    }
    bool AtText() const { return mRest.starts_with('"'); }

    std::optional<std::string> TakeText() {
        if (!Take('"')) return std::nullopt;
        std::string text;
        while (!mRest.empty() && !AtText()) {
            const char c = mRest[0];
            mRest.remove_prefix(1);
            if (c == '\\' && !TakeEscaped(text)) return std::nullopt;
            if (c != '\\') text += c;
        }
        return Take('"') ? std::optional(text) : std::nullopt;
    }

    /// A number, true, false or null.
    std::string TakeWord() {
        std::string word(mRest.substr(0, mRest.find_first_of(",} ")));
        mRest.remove_prefix(word.size());
        return word;
    }

private:
    bool TakeEscaped(std::string& text) {
        if (mRest.empty()) return false;
        const char c = mRest[0];
        mRest.remove_prefix(1);
        if (c != 'u') {
            text += c == 'n' ? '\n' : c;
            return true;
        }
        if (mRest.size() < 4) return false;
        char32_t character = 0;
        for (const char digit : mRest.substr(0, 4)) {
            const std::size_t value = std::string_view("0123456789ABCDEF").find(digit);
            if (value == std::string_view::npos) return false;
            character = character * 16 + static_cast<char32_t>(value);
        }
        mRest.remove_prefix(4);
        AppendUtf8(text, character);
        return true;
    }

    std::string_view mRest;
};

}  // namespace

JsonObject& JsonObject::Add(std::string_view name, std::string_view value) {
    if (!mMembers.empty()) mMembers += ',';
    mMembers += Quoted(name) + ':';
    mMembers += value;
    return *this;
}

JsonObject& JsonObject::Text(std::string_view name, std::string_view utf8) {
    return Add(name, Quoted(utf8));
}

JsonObject& JsonObject::TextOrNull(std::string_view name, std::string_view utf8) {
    return utf8.empty() ? Add(name, "null") : Text(name, utf8);
}

JsonObject& JsonObject::Number(std::string_view name, std::int64_t value) {
    return Add(name, std::to_string(value));
}

JsonObject& JsonObject::NumberOrNull(std::string_view name, std::optional<std::int64_t> value) {
    return value ? Number(name, *value) : Add(name, "null");
}

JsonObject& JsonObject::Seconds(std::string_view name, std::uint64_t ms) {
    const std::string fraction = std::to_string(1000 + ms % 1000);
    return Add(name, std::to_string(ms / 1000) + "." + fraction.substr(1));
}

JsonObject& JsonObject::Flag(std::string_view name, bool value) {
    return Add(name, value ? "true" : "false");
}

std::optional<std::map<std::string, std::string>> JsonMembers(std::string_view line) {
    std::map<std::string, std::string> members;
    Reader reader(line);
    if (!reader.Take('{')) return std::nullopt;
    do {
        const std::optional<std::string> name = reader.TakeText();
        if (!name || !reader.Take(':')) return std::nullopt;
        if (reader.AtText()) {
            const std::optional<std::string> value = reader.TakeText();
            if (!value) return std::nullopt;
            members[*name] = *value;
        } else if (std::string word = reader.TakeWord(); word != "null") {
            members[*name] = std::move(word);
        }
    } while (reader.Take(','));
    if (!reader.Take('}')) return std::nullopt;
    return members;
}

}  // namespace vantor
