// What the window of a terminal shows: rows of cells with time stamps, selection and hits of a
// search, in the same form for every view mode. It paints nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/engine/TerminalScreen.hpp"
#include "terminal/options/TerminalOptions.hpp"
#include "terminal/view/ControlText.hpp"
#include "terminal/view/HexText.hpp"
#include "terminal/view/LinePlaces.hpp"
#include "terminal/view/ReceivedBytes.hpp"
#include "terminal/view/ShownText.hpp"
#include "terminal/view/TerminalSearch.hpp"
#include "terminal/view/TerminalSelection.hpp"

namespace vantor {

/// How a cell is highlighted. A selected hit is shown as selected.
enum class Mark : std::uint8_t { None, Hit, CurrentHit, Selected };

/// A row of the window. Valid until the next call of `Row` and the next change.
struct ShownRow {
    std::span<const Cell> cells;  ///< from the left edge, with the time stamp; blank beyond
    std::span<const Mark> marks;  ///< of the cells from the left edge; none beyond
};

/// A cell of the window, counted from its upper left corner; the mouse may be outside of it.
struct MouseCell {
    int row;
    int column;
    bool rightHalf;  ///< the mouse is in the right half of the cell
};

enum class ScrollStep : std::uint8_t { LineUp, LineDown, PageUp, PageDown, Start, End };

struct FindOptions {
    bool matchCase = false;
    bool backwards = false;  ///< towards older text
};

enum class Found : std::uint8_t { Nothing, Hit, HitAfterWrapping };

/// Lines are numbered as in `ShownText`, rows and columns from the window's upper left corner.
/// Follows the newest text until it is scrolled up. Functions that return a bool tell whether the
/// whole window is to be repainted.
class TerminalViewport {
public:
    /// `screen` outlives the viewport, which sets its size.
    explicit TerminalViewport(TerminalScreen& screen);
    TerminalViewport(const TerminalViewport&) = delete;
    TerminalViewport& operator=(const TerminalViewport&) = delete;

    // --- size and mode -------------------------------------------------------------------------

    /// Sets the size of the window in cells. The screen gets what the time stamps leave.
    void Size(int columns, int rows);
    int Columns() const { return mColumns; }
    int Rows() const { return mScreen.Rows(); }
    /// Columns of the time stamps at the left edge; 0 without them.
    int Gutter() const { return mGutter; }

    /// Sets the view mode, the notation and the time stamps. A changed mode keeps the place
    /// roughly and ends the selection.
    void Choose(const TerminalOptions& options);
    ViewMode Mode() const { return mMode; }
    /// Sets how received bytes are shown as characters.
    void Decode(const ByteDecoder& decoder);

    // --- rows to paint -------------------------------------------------------------------------

    ShownRow Row(int row) const;
    /// The cell of the cursor; empty when it is hidden or not in the window.
    std::optional<ScreenCursor> Cursor() const;
    /// Rows to repaint since the last `Clean`. They include the rows of the cursor, before and
    /// after.
    bool Dirty(int row) const;
    bool AnyDirty() const;
    /// Marks everything as painted.
    void Clean();

    // --- scrolling -----------------------------------------------------------------------------

    /// The existing lines, and the first one of the newest that fill the window: the range and the
    /// last position of a scroll bar with `Rows()` a page.
    std::int64_t FirstLine() const { return mText->FirstLine(); }
    std::int64_t TopLine() const;
    std::int64_t EndLine() const { return mText->EndLine(); }
    /// The line in the first row.
    std::int64_t FirstShownLine() const;
    bool ScrollTo(std::int64_t firstLine);
    bool ScrollBy(std::int64_t lines) { return ScrollTo(FirstShownLine() + lines); }
    bool Scroll(ScrollStep step);
    /// Scrolls by a movement of the wheel in 120ths of a notch, positive up, at most a page a
    /// notch. Less than a notch is kept for the next movement.
    bool Wheel(int movement, int linesPerNotch);
    bool ScrollToNewest() { return ScrollTo(TopLine()); }

    // --- selecting -----------------------------------------------------------------------------

    TerminalSelection& Selection() { return mSelection; }
    const TerminalSelection& Selection() const { return mSelection; }
    /// Time stamps are no part of the text: a point on one is the start of its line.
    TextPoint PointAt(MouseCell at) const;
    /// Notes the part of the selection that the screen can overwrite, before it changes.
    void BeforeChange();
    /// True when the change has overwritten text of the selection or dropped all of it.
    bool SelectionLost() const;

    // --- searching -----------------------------------------------------------------------------

    /// Searches for UTF-8 `text` from the current hit or the window on, wraps around, and scrolls
    /// the hit into the window. All hits are marked until `EndFind`. A wrapped line is searched as
    /// one line, the hex view as characters and, for a text like "0D 0A", as bytes.
    Found Find(std::string_view text, FindOptions options = {});
    void EndFind();

    // --- the text ------------------------------------------------------------------------------

    /// Keeps bytes that have arrived at `timeMs` (Clock::LocalMilliseconds), before the screen
    /// shows them.
    void Received(std::string_view bytes, std::int64_t timeMs);
    /// The screen has shown them.
    void Shown();
    const ReceivedBytes& Bytes() const { return mBytes; }
    /// What is shown, the whole scrollback of it.
    const ShownText& Text() const { return *mText; }
    /// Drops the history and the kept bytes; the screen stays.
    void ClearScrollback();

private:
    std::int64_t OffsetOf(std::int64_t line) const;
    std::int64_t LineOf(std::int64_t offset) const;
    void Layout();
    void FollowAtEnd();
    void ScrollIntoView(std::int64_t line);
    void MarkLine(std::int64_t line) const;
    void MarkHits(std::int64_t line, std::span<Mark> marks) const;
    void AppendStamp(std::int64_t line) const;
    std::optional<std::int64_t> ArrivedBefore(std::int64_t line) const;

    TerminalScreen& mScreen;
    int mColumns;
    int mGutter = 0;
    ViewMode mMode = ViewMode::Text;
    ControlNotation mNotation = ControlNotation::Pictures;
    TimeStamps mStamps = TimeStamps::Off;
    ByteDecoder mDecoder;

    ReceivedBytes mBytes;
    LinePlaces mPlaces;
    ScreenText mScreenText{mScreen};
    ControlText mControlText{mBytes};
    HexText mHexText{mBytes};
    const ShownText* mText = &mScreenText;

    std::optional<std::int64_t> mFirst;  // while it is scrolled up
    int mWheel = 0;                      // movement below one notch

    TerminalSelection mSelection{mScreenText};
    std::int64_t mOverwritableFrom = 0;
    std::string mOverwritable;

    std::optional<TerminalSearch> mSearch;
    std::optional<TextPosition> mHit;  // the current one

    // As last painted:
    std::int64_t mPaintedFirst = 0;
    std::int64_t mPaintedLines = 0;
    std::int64_t mPaintedBytes = 0;

    mutable std::vector<Cell> mCells;  // of the last row asked for
    mutable std::vector<Mark> mMarks;
};

}  // namespace vantor
