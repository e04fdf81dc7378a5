#include "terminal/TerminalScreen.hpp"

#include <algorithm>
#include <utility>

namespace vantor {
namespace {

constexpr int kTabWidth = 8;

std::size_t Index(int number) {
    return static_cast<std::size_t>(number);
}

}  // namespace

TerminalScreen::TerminalScreen(int columns, int rows, std::size_t historyLines)
    : mColumns(std::clamp(columns, 1, kMostColumns)),
      mRows(std::clamp(rows, 1, kMostRows)),
      mCapacity(historyLines + kMostRows),
      mBottom(mRows - 1) {
    while (mCount < Index(mRows)) AddLine();
    for (int column = 0; column < kMostColumns; column += kTabWidth) mTabStops.set(Index(column));
}

// --- lines -----------------------------------------------------------------------------------

std::size_t TerminalScreen::InRing(std::size_t index) const {
    const std::size_t at = mStart + index;
    return at < mCapacity ? at : at - mCapacity;
}

std::size_t TerminalScreen::IndexOf(int row) const {
    return mCount - Index(mRows) + Index(row);
}

/// Appends a blank line. At full capacity the oldest line's memory is reused for it.
void TerminalScreen::AddLine() {
    if (mCount == mCapacity) {
        mStart = mStart + 1 == mCapacity ? 0 : mStart + 1;
        --mCount;
        ++mFirstLine;
    }
    // The ring fills from the front, so a missing element is always the next one.
    if (mStart + mCount == mRing.size() && mRing.size() < mCapacity) mRing.emplace_back();
    ++mCount;
    StoredLine& line = At(mCount - 1);
    line.cells.clear();
    line.continues = false;
}

void TerminalScreen::DropBlankLines(int most) {
    for (int i = 0; i < most && mCursor.row < mRows - 1; ++i) {
        if (!Row(mRows - 1).cells.empty()) return;
        --mCount;
        --mRows;
    }
}

const TerminalScreen::StoredLine* TerminalScreen::Find(std::int64_t line) const {
    if (line < FirstLine() || line >= EndLine()) return nullptr;
    return &mRing[InRing(static_cast<std::size_t>(line - mFirstLine))];
}

std::span<const Cell> TerminalScreen::Line(std::int64_t line) const {
    const StoredLine* const found = Find(line);
    return found ? std::span(found->cells) : std::span<const Cell>();
}

bool TerminalScreen::Continues(std::int64_t line) const {
    const StoredLine* const found = Find(line);
    return found && found->continues;
}

void TerminalScreen::Resize(int columns, int rows) {
    columns = std::clamp(columns, 1, kMostColumns);
    rows = std::clamp(rows, 1, kMostRows);
    if (columns == mColumns && rows == mRows) return;
    mColumns = columns;
    if (rows < mRows) DropBlankLines(mRows - rows);
    // Fewer rows move the upper ones into the history; more rows bring them back.
    const int shift = std::min(rows - mRows, static_cast<int>(mCount) - mRows);
    mRows += shift;
    mCursor.row += shift;
    while (mRows < rows) {
        AddLine();
        ++mRows;
    }
    mTop = 0;
    mBottom = mRows - 1;
    PlaceCursor(mCursor.row, mCursor.column);
    mAllDirty = true;
}

void TerminalScreen::Clean() {
    mAllDirty = false;
    mDirty.reset();
}

// --- characters ------------------------------------------------------------------------------

void TerminalScreen::Print(std::u32string_view characters) {
    while (!characters.empty()) {
        WrapIfPending();
        const std::size_t room = Index(mColumns - mCursor.column);
        const std::u32string_view part = characters.substr(0, room);
        Put(part);
        characters.remove_prefix(part.size());
        if (part.size() < room) return;
        mWrapPending = true;
        // Without auto-wrap each further character overwrites the last column.
        if (!modes.autoWrap && characters.size() > 1)
            characters.remove_prefix(characters.size() - 1);
    }
}

void TerminalScreen::WrapIfPending() {
    if (!std::exchange(mWrapPending, false) || !modes.autoWrap) return;
    Row(mCursor.row).continues = true;
    mCursor.column = 0;
    LineFeed();
}

/// Writes what fits into the cursor's row; moves the cursor past it, or to the last column.
void TerminalScreen::Put(std::u32string_view characters) {
    if (modes.insert) InsertCharacters(static_cast<int>(characters.size()));
    std::vector<Cell>& cells = CellsToChange();
    const std::size_t from = Index(mCursor.column);
    const std::size_t end = from + characters.size();
    if (cells.size() < end) cells.resize(end);
    Cell cell = pen;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        cell.character = characters[i];
        cells[from + i] = cell;
    }
    mCursor.column = std::min(static_cast<int>(end), mColumns - 1);
}

void TerminalScreen::CarriageReturn() {
    PlaceCursor(mCursor.row, 0);
    if (modes.returnFeeds) LineFeed();
}

void TerminalScreen::LineFeed() {
    mWrapPending = false;
    if (modes.lineFeedReturns) mCursor.column = 0;
    if (mCursor.row == mBottom)
        ScrollUp(1);
    else
        PlaceCursor(mCursor.row + 1, mCursor.column);
}

void TerminalScreen::ReverseLineFeed() {
    if (mCursor.row == mTop)
        ScrollDown(1);
    else
        PlaceCursor(mCursor.row - 1, mCursor.column);
}

void TerminalScreen::Tab() {
    int column = mCursor.column + 1;
    while (column < mColumns - 1 && !mTabStops.test(Index(column))) ++column;
    PlaceCursor(mCursor.row, column);
}

void TerminalScreen::NewPage() {
    int used = mRows;
    while (used > 0 && Row(used - 1).cells.empty()) --used;
    for (; used > 0; --used) AddLine();
    PlaceCursor(0, 0);
    mScrolled = false;
    mAllDirty = true;
}

void TerminalScreen::ShowCursor(bool visible) {
    modes.cursorVisible = visible;
    MarkDirty(mCursor.row);
}

// --- the cursor ------------------------------------------------------------------------------

void TerminalScreen::PlaceCursor(int row, int column) {
    MarkDirty(std::clamp(mCursor.row, 0, mRows - 1));
    mCursor = {std::clamp(row, 0, mRows - 1), std::clamp(column, 0, mColumns - 1)};
    mWrapPending = false;
    MarkDirty(mCursor.row);
}

void TerminalScreen::MoveTo(int row, int column) {
    if (modes.originMode) row = std::clamp(row + mTop, mTop, mBottom);
    PlaceCursor(row, column);
}

void TerminalScreen::MoveBy(int rows, int columns) {
    const bool inside = CursorInRegion();
    const int row = std::clamp(mCursor.row + rows, inside ? mTop : 0, inside ? mBottom : mRows - 1);
    PlaceCursor(row, mCursor.column + columns);
}

void TerminalScreen::RestoreCursor() {
    pen = mSaved.pen;
    modes.originMode = mSaved.originMode;
    PlaceCursor(mSaved.cursor.row, mSaved.cursor.column);
}

// --- erasing and moving ----------------------------------------------------------------------

/// Blanks the columns `from` to `to` (exclusive) of a row. Trailing blanks are not stored.
void TerminalScreen::Blank(int row, int from, int to) {
    std::vector<Cell>& cells = Row(row).cells;
    if (Index(to) >= cells.size())
        cells.resize(std::min(cells.size(), Index(from)));
    else
        std::fill(cells.begin() + from, cells.begin() + to, Cell{});
    Row(row).continues = false;
    MarkDirty(row);
}

void TerminalScreen::EndLineAbove(int row) {
    const std::size_t index = IndexOf(row);
    if (index > 0) At(index - 1).continues = false;
}

void TerminalScreen::EraseLine(Erase extent) {
    mWrapPending = false;
    Blank(mCursor.row, extent == Erase::ToEnd ? mCursor.column : 0,
          extent == Erase::ToStart ? mCursor.column + 1 : kMostColumns);
}

void TerminalScreen::EraseDisplay(Erase extent) {
    if (extent == Erase::All && mScrolled) {
        const ScreenCursor cursor = mCursor;
        NewPage();
        PlaceCursor(cursor.row, cursor.column);
        return;
    }
    if (extent == Erase::All) EndLineAbove(0);
    EraseLine(extent);
    const int first = extent == Erase::ToEnd ? mCursor.row + 1 : 0;
    const int end = extent == Erase::ToStart ? mCursor.row : mRows;
    for (int row = first; row < end; ++row) Blank(row, 0, kMostColumns);
}

void TerminalScreen::EraseCharacters(int count) {
    mWrapPending = false;
    Blank(mCursor.row, mCursor.column, mCursor.column + std::clamp(count, 0, kMostColumns));
}

/// The cells of the cursor's row, about to change.
std::vector<Cell>& TerminalScreen::CellsToChange() {
    StoredLine& line = Row(mCursor.row);
    line.continues = false;
    mWrapPending = false;
    MarkDirty(mCursor.row);
    return line.cells;
}

void TerminalScreen::InsertCharacters(int count) {
    std::vector<Cell>& cells = CellsToChange();
    if (Index(mCursor.column) >= cells.size()) return;
    const int most = mColumns - mCursor.column;
    cells.insert(cells.begin() + mCursor.column, Index(std::clamp(count, 0, most)), Cell{});
    cells.resize(std::min(cells.size(), Index(mColumns)));
}

void TerminalScreen::DeleteCharacters(int count) {
    std::vector<Cell>& cells = CellsToChange();
    const auto from = cells.begin() + std::min(mCursor.column, static_cast<int>(cells.size()));
    cells.erase(from, from + std::clamp(count, 0, static_cast<int>(cells.end() - from)));
}

void TerminalScreen::MoveRows(int top, int count) {
    const int rows = mBottom - top + 1;
    const bool up = count > 0;
    const int steps = std::min(up ? count : -count, rows);
    EndLineAbove(top);
    RotateRows(top, mBottom, up ? steps : rows - steps);
    for (int i = 0; i < steps; ++i) Blank(up ? mBottom - i : top + i, 0, kMostColumns);
    if (!up) Row(mBottom).continues = false;
    for (int row = top; row <= mBottom; ++row) MarkDirty(row);
}

void TerminalScreen::RotateRows(int first, int last, int count) {
    if (count <= 0 || count > last - first) return;
    const auto reverse = [this](int from, int to) {
        while (from < to) std::swap(Row(from++), Row(to--));
    };
    reverse(first, first + count - 1);
    reverse(first + count, last);
    reverse(first, last);
}

void TerminalScreen::InsertLines(int count) {
    if (CursorInRegion()) MoveRows(mCursor.row, -std::max(count, 0));
}

void TerminalScreen::DeleteLines(int count) {
    if (CursorInRegion()) MoveRows(mCursor.row, std::max(count, 0));
}

void TerminalScreen::ScrollUp(int count) {
    if (mTop != 0) {
        MoveRows(mTop, std::max(count, 0));
        return;
    }
    const int lines = std::clamp(count, 0, mBottom + 1);
    for (int i = 0; i < lines; ++i) AddLine();
    // Rows below the region stay in place.
    RotateRows(mBottom + 1 - lines, mRows - 1, mRows - 1 - mBottom);
    mScrolled = mScrolled || lines > 0;
    mAllDirty = true;
}

void TerminalScreen::ScrollDown(int count) {
    MoveRows(mTop, -std::max(count, 0));
}

void TerminalScreen::ScrollRegion(int top, int bottom) {
    bottom = std::min(bottom, mRows - 1);
    if (top < 0 || top >= bottom) return;
    mTop = top;
    mBottom = bottom;
    MoveTo(0, 0);
}

void TerminalScreen::Reset() {
    const bool returnFeeds = modes.returnFeeds;  // set by the program, not by received sequences
    modes = {.returnFeeds = returnFeeds};
    pen = {};
    mSaved = {};
    mTop = 0;
    mBottom = mRows - 1;
    mTabStops.reset();
    for (int column = 0; column < kMostColumns; column += kTabWidth) mTabStops.set(Index(column));
    NewPage();
}

}  // namespace vantor
