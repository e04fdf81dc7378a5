// The part of a terminal's text that its window shows, and what is selected in it.
#pragma once

#include <cstdint>
#include <optional>

#include "terminal/TerminalScreen.hpp"
#include "terminal/TerminalSelection.hpp"

namespace vantor {

/// Follows the newest text until it is scrolled up.
class TerminalViewport {
public:
    /// `screen` outlives the viewport.
    explicit TerminalViewport(const TerminalScreen& screen) : mScreen(screen) {}

    /// The line in the first row: that of the screen unless it is scrolled up.
    std::int64_t FirstShownLine() const;
    /// True when this changes what is shown.
    bool ScrollTo(std::int64_t firstLine);
    bool ScrollToNewest() { return ScrollTo(mScreen.TopLine()); }

    TerminalSelection& Selection() { return mSelection; }
    const TerminalSelection& Selection() const { return mSelection; }

private:
    const TerminalScreen& mScreen;
    std::optional<std::int64_t> mFirst;  // while it is scrolled up
    TerminalSelection mSelection{mScreen};
};

}  // namespace vantor
