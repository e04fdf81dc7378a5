// Searches the text that a terminal shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/view/ShownText.hpp"

namespace vantor {

/// The text that is searched for. A hit may extend over wrapped lines. Where bytes are shown, a
/// text like "0D 0A" is found as bytes too.
class TerminalSearch {
public:
    /// `text` is UTF-8; an empty one is found nowhere.
    TerminalSearch(std::string_view text, bool matchCase);

    /// The same search: case counts only if it must match.
    bool operator==(const TerminalSearch&) const = default;

    bool Empty() const { return mCharacters.empty(); }

    /// The first hit that starts at or after `from`, or, backwards, the last one before it, as far
    /// as `lastLine`. Does not wrap around. Columns count as the indices of `ShownText::Searched`.
    std::optional<TextPosition> Next(const ShownText& text, TextPosition from,
                                     std::int64_t lastLine) const;
    std::optional<TextPosition> Previous(const ShownText& text, TextPosition from,
                                         std::int64_t lastLine) const;

    /// A hit's part of a line, as indices into `ShownText::Searched`, the end exclusive.
    struct Part {
        int from;
        int to;
        TextPosition start;  ///< of the hit
    };
    /// The parts of all hits in `line`, also of those that start above it.
    std::vector<Part> PartsIn(const ShownText& text, std::int64_t line) const;

private:
    struct Start {
        int column;
        int length;
    };
    class Haystack;

    std::u32string mCharacters;
    std::u32string mBytes;  // a character for each; empty when the text does not name bytes
    bool mMatchCase;
};

}  // namespace vantor
