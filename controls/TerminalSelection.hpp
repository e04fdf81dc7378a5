// The selected part of a terminal's text.
#pragma once

#include <string>

#include "controls/TerminalScreen.hpp"

namespace vantor {

/// A range of text, its end exclusive. It follows its text while that scrolls, and shrinks when
/// text drops out of the history.
class TerminalSelection {
public:
    /// `screen` outlives the selection.
    explicit TerminalSelection(const TerminalScreen& screen) : mScreen(screen) {}

    /// Selects the text between the two positions, in either order.
    void Set(TextPosition anchor, TextPosition end);
    /// Selects all text, without the blank lines below it.
    void SetAll();
    void Clear() { mFrom = mTo = {}; }

    bool Empty() const { return !(mFrom < mTo); }
    bool Contains(TextPosition position) const { return !(position < mFrom) && position < mTo; }
    TextPosition From() const { return mFrom; }
    TextPosition To() const { return mTo; }

    /// The selected characters, CR LF between lines, without trailing blanks. A line that was only
    /// wrapped at the screen edge is returned unbroken.
    std::string Text() const;

private:
    const TerminalScreen& mScreen;
    TextPosition mFrom;
    TextPosition mTo;
};

}  // namespace vantor
