// The selected part of a terminal's text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "terminal/ShownText.hpp"

namespace vantor {

/// What the user selects with one click more each.
enum class SelectBy : std::uint8_t { Character, Word, Line };

/// A cell of the text, and the half of it: a range of characters ends between two cells.
struct TextPoint {
    TextPosition cell;
    bool rightHalf = false;
};

/// A range of text, its end exclusive, or a rectangle. It follows its text while that scrolls, and
/// shrinks when text drops out of the history.
class TerminalSelection {
public:
    /// `text` outlives the selection, or the next call of `Over`.
    explicit TerminalSelection(const ShownText& text) : mShown(&text) {}
    /// Selects in another text from now on; nothing is selected.
    void Over(const ShownText& text);

    /// Selects the text between the two positions, in either order.
    void Set(TextPosition anchor, TextPosition end);
    /// Selects all text except trailing blank lines; nothing if there is no text.
    void SetAll();
    void Clear();
    /// Selects nothing; `ExtendTo` still knows where the selection began.
    void Lose() { mFrom = mTo = {}; }

    /// Starts a selection: nothing, the word or the wrapped line at `at`. A word consists of
    /// letters, digits and the characters of file names, addresses and numbers; it may continue
    /// in the next line. A rectangle is selected by characters.
    void Begin(TextPoint at, SelectBy by, bool rectangular);
    /// Selects from where the selection began to `at`, in the same units; begins one if there is
    /// none.
    void ExtendTo(TextPoint at);

    bool Empty() const;
    bool Contains(TextPosition position) const;
    /// Its ends; of a rectangle the upper left corner and the lower right one.
    TextPosition From() const { return mFrom; }
    TextPosition To() const { return mTo; }

    /// The selected characters in UTF-8, with CR LF between lines and without trailing blanks. A
    /// wrapped line is returned as one line, a rectangle as its part of each row.
    std::string Text() const { return TextFrom(mFrom.line); }
    /// The selected text from line `first` on, in the same form.
    std::string TextFrom(std::int64_t first) const;

private:
    struct Range {
        TextPosition from;
        TextPosition to;
    };

    Range UnitAt(TextPoint at) const;
    Range WordAt(TextPosition cell) const;

    const ShownText* mShown;
    TextPosition mFrom;
    TextPosition mTo;
    bool mRectangular = false;
    SelectBy mBy = SelectBy::Character;
    std::optional<Range> mAnchor;  // the unit at which it has begun
};

}  // namespace vantor
