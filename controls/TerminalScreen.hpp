// The terminal's screen and the lines that have left it at the top: characters with their looks,
// without a window and without a port. What bytes mean is the parser's business.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace vantor {

/// The colour of whoever draws, instead of one of the sixteen: 0 to 7 black, red, green, yellow,
/// blue, magenta, cyan, white; 8 to 15 the bright ones in the same order.
inline constexpr std::uint8_t kDefaultColour = 16;

/// Looks of a cell beside its colours; a cell's `flags` hold any of them.
enum CellFlag : std::uint8_t {
    kBold = 1,
    kUnderlined = 2,
    kBlinking = 4,
    kReversed = 8,
    kConcealed = 16,
};

/// One character, of the system's 8-bit code page.
struct Cell {
    char character = ' ';
    std::uint8_t foreground = kDefaultColour;
    std::uint8_t background = kDefaultColour;
    std::uint8_t flags = 0;

    friend bool operator==(const Cell&, const Cell&) = default;
};

/// A place in the text. Lines are counted from the first that the screen ever held and keep
/// their number while the text moves up, until they drop out at the far end.
struct TextPosition {
    std::int64_t line = 0;
    int column = 0;

    friend bool operator<(const TextPosition& a, const TextPosition& b) {
        return a.line != b.line ? a.line < b.line : a.column < b.column;
    }
};

struct ScreenCursor {
    int row = 0;
    int column = 0;

    friend bool operator==(const ScreenCursor&, const ScreenCursor&) = default;
};

/// Directions and extents of erasing, with the numbers that the sequences use.
enum class Erase : std::uint8_t { ToEnd = 0, ToStart = 1, All = 2 };

/// The screen's modes, which sequences and the control switch.
struct ScreenModes {
    bool autoWrap = true;          ///< a character beyond the last column goes to the next row
    bool insert = false;           ///< characters push the rest of their row to the right
    bool originMode = false;       ///< rows are counted from the top of the scroll region
    bool lineFeedReturns = false;  ///< LF goes to the first column too
    bool returnFeeds = false;      ///< CR goes to the next row too
    bool cursorVisible = true;
};

/// Rows and columns count from 0. Every operation takes any numbers and clamps them; nothing
/// fails. Memory is bounded by the history and by the largest screen.
class TerminalScreen {
public:
    static constexpr int kMostColumns = 512;
    static constexpr int kMostRows = 256;
    static constexpr std::size_t kHistoryLines = 10'000;

    explicit TerminalScreen(int columns = 80, int rows = 24,
                            std::size_t historyLines = kHistoryLines);

    int Columns() const { return mColumns; }
    int Rows() const { return mRows; }
    /// Text is never broken anew: what a narrower screen cuts off is there again on a wider one.
    void Resize(int columns, int rows);

    // The text. Lines from FirstLine up to but not including EndLine exist; the last Rows of them,
    // from TopLine on, are the screen.
    std::int64_t FirstLine() const { return mFirstLine; }
    std::int64_t TopLine() const { return EndLine() - mRows; }
    std::int64_t EndLine() const { return mFirstLine + static_cast<std::int64_t>(mCount); }
    /// The cells of a line up to the last that was written; blank beyond. May be longer than the
    /// screen is wide. Empty for a line that does not exist. Valid until the next change.
    std::span<const Cell> Line(std::int64_t line) const;
    /// True when the text of `line` goes on in the next one without a line end between them.
    bool Continues(std::int64_t line) const;

    ScreenCursor Cursor() const { return mCursor; }

    // What a drawn side has to draw again. The rows of the cursor, before and after, count.
    bool Dirty(int row) const;
    bool AnyDirty() const { return mAllDirty || mDirty.any(); }
    /// All that is on the screen has been drawn.
    void Clean();

    // --- operations of the parser -----------------------------------------------------------

    /// Writes characters at the cursor.
    void Print(std::string_view characters);
    void CarriageReturn();
    /// Down a row; at the region's bottom the region moves up, from the top of the screen into
    /// the history.
    void LineFeed();
    void ReverseLineFeed();
    void Backspace();
    void Tab();
    /// Moves all that is on the screen into the history and the cursor to the first place: a
    /// cleared page stays readable further up.
    void NewPage();
    void ShowCursor(bool visible);

    void MoveTo(int row, int column);  ///< rows as the origin mode counts them
    void MoveToColumn(int column) { PlaceCursor(mCursor.row, column); }
    void MoveBy(int rows, int columns);  ///< stops at the edges of the region, or of the screen
    void SaveCursor();
    void RestoreCursor();

    /// All of it goes into the history first when lines have gone there since the last page did:
    /// a display that clears and redraws the screen over and over leaves one page there.
    void EraseDisplay(Erase extent);
    void EraseLine(Erase extent);
    void EraseCharacters(int count);
    void InsertCharacters(int count);
    void DeleteCharacters(int count);
    void InsertLines(int count);
    void DeleteLines(int count);
    void ScrollUp(int count);
    void ScrollDown(int count);
    /// Rows `top` to `bottom`, both included; a region of less than two rows is no region.
    void ScrollRegion(int top, int bottom);

    void SetTabStop();
    void ClearTabStop() { mTabStops.reset(static_cast<std::size_t>(mCursor.column)); }
    void ClearAllTabStops() { mTabStops.reset(); }

    ScreenModes modes;
    Cell pen;  ///< colours and flags of what is written; its character is not used

    /// All as at the start, what is on the screen kept in the history.
    void Reset();

private:
    struct StoredLine {
        std::vector<Cell> cells;
        bool continues = false;
    };
    struct Saved {
        ScreenCursor cursor;
        Cell pen;
        bool originMode = false;
    };

    StoredLine& At(std::size_t index);
    const StoredLine& At(std::size_t index) const;
    StoredLine& Row(int row);
    void AddLine();
    void DropBlankLines(int most);
    int UsedRows() const;

    void Put(std::string_view characters);
    void WrapIfPending();
    void PlaceCursor(int row, int column);
    /// Moves the rows from `top` to the region's bottom by `count`, up when positive.
    void MoveRows(int top, int count);
    /// Moves the rows `first` to `last` up by `count`; those at the top come in again at the
    /// bottom.
    void RotateRows(int first, int last, int count);
    /// What stands in `row` is no longer the rest of the line above.
    void EndLineAbove(int row);
    bool CursorInRegion() const { return mCursor.row >= mTop && mCursor.row <= mBottom; }
    void Blank(int row, int from, int to);
    void MarkDirty(int row) { mDirty.set(static_cast<std::size_t>(row)); }
    void MarkDirty(int first, int last);

    int mColumns;
    int mRows;
    std::size_t mCapacity;
    std::vector<StoredLine> mRing;  // lines that fall out at one end are used again at the other
    std::size_t mStart = 0;
    std::size_t mCount = 0;
    std::int64_t mFirstLine = 0;

    ScreenCursor mCursor;
    bool mWrapPending = false;  // the last column is written; the next character goes below
    bool mScrolled = true;      // lines went into the history since the last page, or none did yet
    int mTop = 0;
    int mBottom;
    Saved mSaved;
    std::bitset<kMostColumns> mTabStops;
    std::bitset<kMostRows> mDirty;
    bool mAllDirty = true;
};

}  // namespace vantor
