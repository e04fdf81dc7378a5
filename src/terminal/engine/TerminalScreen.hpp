// The terminal's screen and its scroll-back history: characters with attributes, without a window
// and without a port. It does not interpret bytes; the parser does.
#pragma once

#include <array>
#include <bitset>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "terminal/engine/Cell.hpp"
#include "terminal/engine/CharacterSets.hpp"
#include "terminal/engine/TerminalLines.hpp"

namespace vantor {

/// A position in the text. Line numbers count from the first line ever written and do not change
/// while the text scrolls, until the line drops out of the history.
struct TextPosition {
    std::int64_t line = 0;
    int column = 0;

    friend auto operator<=>(const TextPosition&, const TextPosition&) = default;
};

struct ScreenCursor {
    int row = 0;
    int column = 0;

    friend bool operator==(const ScreenCursor&, const ScreenCursor&) = default;
};

/// Erase extents, with the parameter values of the sequences.
enum class Erase : std::uint8_t { ToEnd = 0, ToStart = 1, All = 2 };

/// Screen modes, set by sequences and by the control.
struct ScreenModes {
    bool autoWrap = true;          ///< a character beyond the last column goes to the next row
    bool insert = false;           ///< characters shift the rest of their row to the right
    bool originMode = false;       ///< rows count from the top of the scroll region
    bool lineFeedReturns = false;  ///< LF also moves to the first column
    bool returnFeeds = false;      ///< CR also moves to the next row
    bool cursorVisible = true;
    bool reverseScreen = false;          ///< default colours are exchanged on the whole screen
    bool applicationCursorKeys = false;  ///< cursor keys send ESC O instead of ESC [
    bool applicationKeypad = false;      ///< the numeric keypad sends sequences
};

/// Rows and columns count from 0. Every operation clamps out-of-range numbers; nothing fails.
/// Memory is bounded: see TerminalLines.
class TerminalScreen {
public:
    static constexpr int kMostColumns = 512;
    static constexpr int kMostRows = 256;
    static constexpr std::size_t kHistoryLines = 10'000;

    explicit TerminalScreen(int columns = 80, int rows = 24,
                            std::size_t historyLines = kHistoryLines);

    int Columns() const { return mColumns; }
    int Rows() const { return mRows; }
    /// Text is not rewrapped: what a narrower screen cuts off reappears on a wider one.
    void Resize(int columns, int rows);

    // The text. Lines from FirstLine to EndLine (exclusive) exist; the last Rows of them,
    // from TopLine on, are the screen.
    std::int64_t FirstLine() const { return mLines.First(); }
    std::int64_t TopLine() const { return EndLine() - mRows; }
    std::int64_t EndLine() const {
        return mLines.First() + static_cast<std::int64_t>(mLines.Count());
    }
    /// The cells of a line up to the last one written; blank beyond. May be longer than the screen
    /// width. Empty for a line that does not exist. Valid until the next change.
    std::span<const Cell> Line(std::int64_t line) const;
    /// True when the text of `line` continues in the next one without a line end.
    bool Continues(std::int64_t line) const;
    /// When the first character of `line` was written, as told by Now; 0 when unknown or blank.
    std::int64_t ArrivedAt(std::int64_t line) const;
    /// Discards all lines before the screen.
    void ClearHistory();

    /// The time of what is written from now on, in milliseconds of any clock; 0 for unknown.
    void Now(std::int64_t milliseconds) { mNow = milliseconds; }

    ScreenCursor Cursor() const { return mCursor; }
    /// The cursor as MoveTo counts: in origin mode from the top of the scroll region.
    ScreenCursor CountedCursor() const;

    // Rows to repaint. They include the rows of the cursor, before and after.
    bool Dirty(int row) const {
        return row >= 0 && row < mRows && (mAllDirty || mDirty.test(static_cast<std::size_t>(row)));
    }
    bool AnyDirty() const { return mAllDirty || mDirty.any(); }
    /// Marks everything as painted.
    void Clean();

    // --- operations of the parser -----------------------------------------------------------

    /// Writes characters at the cursor. After the last column the cursor stays there, and the next
    /// character goes to the next row. Tabs and attributes keep that state; what moves the cursor
    /// or changes its row ends it.
    void Print(std::u32string_view characters);
    void CarriageReturn();
    /// Moves down a row. At the bottom of the region the region scrolls; rows that leave the top of
    /// the screen go to the history.
    void LineFeed();
    void Index();  ///< as LineFeed, but never moves to the first column
    void NextLine();
    void ReverseLineFeed();
    void Backspace() { PlaceCursor(mCursor.row, mCursor.column - 1); }
    void Tab() { TabBy(1); }
    void TabBy(int count);  ///< to the left when negative
    /// Moves the whole screen into the history and the cursor to the first position:
    /// a cleared page remains readable in the history.
    void NewPage();
    void ShowCursor(bool visible);

    void MoveTo(int row, int column);  ///< rows as counted by the origin mode
    void MoveToColumn(int column) { PlaceCursor(mCursor.row, column); }
    /// Stops at a margin of the region that it meets, and at the edges of the screen.
    void MoveBy(int rows, int columns);
    /// With the pen, the character sets, the origin mode and the state at the last column; one
    /// place for each of the two screens.
    void SaveCursor();
    void RestoreCursor();

    /// Erased, inserted and scrolled-in cells get the background of the pen.
    /// Erasing the whole screen first saves it to the history if lines have scrolled there since
    /// the last saved page. A display that repeatedly clears and redraws thus saves one page.
    void EraseDisplay(Erase extent);
    void EraseLine(Erase extent);
    void EraseCharacters(int count);
    /// Characters beyond the last column are lost; what a narrower screen hides does not move.
    void InsertCharacters(int count);
    void DeleteCharacters(int count);
    void InsertLines(int count);
    void DeleteLines(int count);
    void ScrollUp(int count);
    void ScrollDown(int count);
    /// Rows `top` to `bottom` (inclusive); a region of fewer than two rows is ignored.
    void ScrollRegion(int top, int bottom);

    /// The alternate screen starts blank and has no history; the main one is kept meanwhile.
    void ShowAlternate(bool alternate);
    /// Fills the screen with "E", without scroll region.
    void Align();
    /// What changing the number of columns does, which itself stays: clears the screen.
    void ClearForColumns();
    void ReverseScreen(bool on);

    void SetTabStop() { mTabStops.set(static_cast<std::size_t>(mCursor.column)); }
    void ClearTabStop() { mTabStops.reset(static_cast<std::size_t>(mCursor.column)); }
    void ClearAllTabStops() { mTabStops.reset(); }

    ScreenModes modes;
    Cell pen;  ///< colours and flags of written characters; its character is not used
    CharacterSets sets;

    /// Restores the initial state; the contents of the screen stay in the history.
    void Reset();
    /// Restores modes, pen, character sets, scroll region and saved cursor; text and cursor stay.
    void SoftReset();

private:
    struct Saved {
        ScreenCursor cursor;
        Cell pen;
        CharacterSets sets;
        bool originMode = false;
        bool wrapPending = false;
    };

    std::size_t IndexOf(int row) const;
    TerminalLine& Row(int row) { return mLines.At(IndexOf(row)); }
    void AddLine() { mLines.Add(static_cast<std::size_t>(mRows)); }
    void DropBlankLines(int most);
    void ResizeMain(int columns, int rows);
    void SwapScreens();

    void Put(std::u32string_view characters);
    void WrapIfPending();
    void PlaceCursor(int row, int column);
    /// Moves the rows from `top` to the bottom of the region by `count`, up when positive.
    void MoveRows(int top, int count);
    /// Rotates the rows `first` to `last` up by `count`.
    void RotateRows(int first, int last, int count);
    /// Sets whether the line above `row` continues in it.
    void JoinToLineAbove(int row, bool continues);
    bool CursorInRegion() const { return mCursor.row >= mTop && mCursor.row <= mBottom; }
    Saved& SavedState() { return mSaved[mAlternate ? 1 : 0]; }
    /// The visible cells of the cursor's row from the cursor on, about to change.
    std::span<Cell> CellsToMove();
    TerminalLine& LineToChange();
    Cell Erased() const;
    void Blank(int row, int from, int to);
    void BlankRows(int first, int end);
    void MarkDirty(int row) { mDirty.set(static_cast<std::size_t>(row)); }

    int mColumns;
    int mRows;
    TerminalLines mLines;
    std::vector<TerminalLine> mOther;  // the rows of the main screen while the alternate is shown
    bool mAlternate = false;
    std::int64_t mNow = 0;

    ScreenCursor mCursor;
    bool mWrapPending = false;  // the last column is written; the next character goes below
    bool mScrolled = true;      // lines entered the history since the last saved page, or initially
    int mTop = 0;
    int mBottom;
    std::array<Saved, 2> mSaved;
    std::bitset<kMostColumns> mTabStops;
    std::bitset<kMostRows> mDirty;
    bool mAllDirty = true;
};

}  // namespace vantor
