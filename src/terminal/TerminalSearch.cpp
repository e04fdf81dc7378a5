#include "terminal/TerminalSearch.hpp"

#include <algorithm>
#include <array>

#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

bool IsBetween(char32_t character, char32_t first, char32_t last) {
    return character >= first && character <= last;
}

/// In lower case: the letters of the code pages that lines use, Greek and Cyrillic.
char32_t Folded(char32_t character) {
    constexpr char32_t kStep = 0x20;  // between the cases of all these alphabets
    const bool upper = IsBetween(character, U'A', U'Z') ||
                       (IsBetween(character, 0xC0, 0xDE) && character != 0xD7) ||
                       IsBetween(character, 0x391, 0x3A9) || IsBetween(character, 0x410, 0x42F);
    if (upper) return character + kStep;
    if (character == 0x178) return 0xFF;  // Y with diaeresis
    // Latin Extended-A: an upper-case letter before each lower-case one.
    const bool even = IsBetween(character, 0x100, 0x137) || IsBetween(character, 0x14A, 0x177);
    const bool odd = IsBetween(character, 0x139, 0x148) || IsBetween(character, 0x179, 0x17E);
    if (even) return character | 1U;
    return odd ? character + character % 2 : character;
}

void Fold(std::u32string& text) {
    std::ranges::transform(text, text.begin(), Folded);
}

int DigitOf(char c) {
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    const std::size_t at = kDigits.find(c);
    if (at == std::string_view::npos) return -1;
    return static_cast<int>(at < 16 ? at : at - 6);
}

/// The bytes that pairs of hexadecimal digits name, with or without blanks between them; empty for
/// any other text.
std::u32string BytesOf(std::string_view text) {
    std::u32string bytes;
    while (!text.empty()) {
        if (text.front() == ' ') {
            text.remove_prefix(1);
            continue;
        }
        const int high = DigitOf(text.front());
        const int low = text.size() < 2 ? -1 : DigitOf(text[1]);
        if (high < 0 || low < 0) return {};
        bytes += static_cast<char32_t>(high * 16 + low);
        text.remove_prefix(2);
    }
    return bytes;
}

}  // namespace

/// The searched text of lines, and the hits in them. Remembers the last lines, because each is
/// needed again where a hit may begin in the line before it.
class TerminalSearch::Haystack {
public:
    Haystack(const TerminalSearch& search, const ShownText& text) : mSearch(search), mText(text) {}

    /// All hits that start in `line`, in ascending order.
    std::vector<Start> StartsIn(std::int64_t line) {
        std::vector<Start> starts;
        Collect(line, SearchIn::Characters, mSearch.mCharacters, starts);
        if (mSearch.mBytes.empty()) return starts;
        Collect(line, SearchIn::Bytes, mSearch.mBytes, starts);
        std::ranges::stable_sort(starts, {}, &Start::column);
        return starts;
    }
    int Length(std::int64_t line) {
        return static_cast<int>(Of(line, SearchIn::Characters).size());
    }

private:
    struct Known {
        std::int64_t line = -1;
        std::u32string text;
    };

    const std::u32string& Of(std::int64_t line, SearchIn what) {
        const auto kind = static_cast<std::size_t>(what);
        Known& known = mKnown[kind][static_cast<std::size_t>(line) % mKnown[kind].size()];
        if (known.line != line) {
            known = {line, mText.Searched(line, what)};
            if (what == SearchIn::Characters && !mSearch.mMatchCase) Fold(known.text);
        }
        return known.text;
    }

    void Collect(std::int64_t line, SearchIn what, const std::u32string& needle,
                 std::vector<Start>& starts) {
        mLine = Of(line, what);
        const std::size_t length = mLine.size();
        if (length == 0) return;
        // Hits that start here may end in the lines that continue this one.
        for (std::int64_t next = line; mLine.size() < length + needle.size() - 1; ++next) {
            if (next + 1 >= mText.EndLine() || !mText.SearchContinues(next)) break;
            mLine += Of(next + 1, what);
        }
        for (std::size_t at = mLine.find(needle); at < length; at = mLine.find(needle, at + 1))
            starts.push_back({static_cast<int>(at), static_cast<int>(needle.size())});
    }

    const TerminalSearch& mSearch;
    const ShownText& mText;
    std::array<std::array<Known, 4>, 2> mKnown;  // by kind and line
    std::u32string mLine;                        // keeps its memory
};

TerminalSearch::TerminalSearch(std::string_view text, bool matchCase)
    : mBytes(BytesOf(text)), mMatchCase(matchCase) {
    while (!text.empty()) mCharacters += TakeCodePoint(text);
    if (!matchCase) Fold(mCharacters);
}

std::optional<TextPosition> TerminalSearch::Next(const ShownText& text, TextPosition from) const {
    if (Empty()) return {};
    Haystack haystack(*this, text);
    for (std::int64_t line = std::max(from.line, text.FirstLine()); line < text.EndLine(); ++line)
        for (const Start& start : haystack.StartsIn(line))
            if (TextPosition{line, start.column} >= from) return TextPosition{line, start.column};
    return {};
}

std::optional<TextPosition> TerminalSearch::Previous(const ShownText& text,
                                                     TextPosition from) const {
    if (Empty()) return {};
    Haystack haystack(*this, text);
    for (std::int64_t line = std::min(from.line, text.EndLine() - 1); line >= text.FirstLine();
         --line) {
        std::optional<TextPosition> last;
        for (const Start& start : haystack.StartsIn(line))
            if (TextPosition{line, start.column} < from) last = {line, start.column};
        if (last) return last;
    }
    return {};
}

std::vector<TerminalSearch::Part> TerminalSearch::PartsIn(const ShownText& text,
                                                          std::int64_t line) const {
    std::vector<Part> parts;
    if (Empty()) return parts;
    Haystack haystack(*this, text);
    const int length = haystack.Length(line);
    const int reach = static_cast<int>(std::max(mCharacters.size(), mBytes.size())) - 1;
    int before = 0;  // characters from the start of `first` to that of `line`
    for (std::int64_t first = line;; before += haystack.Length(first)) {
        for (const Start& start : haystack.StartsIn(first)) {
            const int from = std::max(start.column - before, 0);
            const int to = std::min(start.column + start.length - before, length);
            if (from < to) parts.push_back({from, to, {first, start.column}});
        }
        if (before >= reach || first == text.FirstLine()) return parts;
        if (!text.SearchContinues(first - 1)) return parts;
        --first;
    }
}

}  // namespace vantor
