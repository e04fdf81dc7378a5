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
    /// All of the text, without the blank lines below it; nothing where there is none.
    void SetAll();
    void Clear() { mFrom = mTo = {}; }

    bool Empty() const { return !(mFrom < mTo); }
    bool Contains(TextPosition position) const { return !(position < mFrom) && position < mTo; }
    TextPosition From() const { return mFrom; }
    TextPosition To() const { return mTo; }

    /// The marked characters, CR LF between lines, blanks at their ends left out. A line that was
    /// only broken at the screen's edge is given in one.
    std::string Text() const { return TextFrom(mFrom.line); }
    /// Likewise of what is marked in `first` and the lines below it.
    std::string TextFrom(std::int64_t first) const;

private:
    const TerminalScreen& mScreen;
    TextPosition mFrom;
    TextPosition mTo;
};

}  // namespace vantor
