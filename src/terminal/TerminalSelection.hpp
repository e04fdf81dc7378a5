// The selected part of a terminal's text.
#pragma once

#include <cstdint>
#include <string>

#include "terminal/TerminalScreen.hpp"

namespace vantor {

/// A range of text, its end exclusive. It follows its text while that scrolls, and shrinks when
/// text drops out of the history.
class TerminalSelection {
public:
    /// `screen` outlives the selection.
    explicit TerminalSelection(const TerminalScreen& screen) : mScreen(screen) {}

    /// Selects the text between the two positions, in either order.
    void Set(TextPosition anchor, TextPosition end);
    /// Selects all text except trailing blank lines; nothing if there is no text.
    void SetAll();
    void Clear() { mFrom = mTo = {}; }

    bool Empty() const { return mFrom == mTo; }
    bool Contains(TextPosition position) const { return mFrom <= position && position < mTo; }
    TextPosition To() const { return mTo; }

    /// The selected characters in UTF-8, with CR LF between lines and without trailing blanks. A
    /// wrapped line is returned as one line.
    std::string Text() const { return TextFrom(mFrom.line); }
    /// The selected text from line `first` on, in the same form.
    std::string TextFrom(std::int64_t first) const;

private:
    const TerminalScreen& mScreen;
    TextPosition mFrom;
    TextPosition mTo;
};

}  // namespace vantor
