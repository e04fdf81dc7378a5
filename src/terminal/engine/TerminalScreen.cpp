#include "terminal/engine/TerminalScreen.hpp"

#include <algorithm>
#include <utility>

namespace vantor {
namespace {

constexpr int kTabWidth = 8;

std::size_t Number(int number) {
    return static_cast<std::size_t>(number);
}

}  // namespace

TerminalScreen::TerminalScreen(int columns, int rows, std::size_t historyLines)
    : mColumns(std::clamp(columns, 1, kMostColumns)),
      mRows(std::clamp(rows, 1, kMostRows)),
      mLines(historyLines + kMostRows),
      mBottom(mRows - 1) {
    while (mLines.Count() < Number(mRows)) AddLine();
    for (int column = 0; column < kMostColumns; column += kTabWidth) mTabStops.set(Number(column));
}

// --- lines -----------------------------------------------------------------------------------

std::size_t TerminalScreen::IndexOf(int row) const {
    return mLines.Count() - Number(mRows) + Number(row);
}

void TerminalScreen::DropBlankLines(int most) {
    for (int i = 0; i < most && mCursor.row < mRows - 1; ++i) {
        if (!Row(mRows - 1).cells.empty()) return;
        mLines.RemoveLast();
        --mRows;
    }
}

std::span<const Cell> TerminalScreen::Line(std::int64_t line) const {
    const TerminalLine* const found = mLines.Find(line);
    return found ? std::span(found->cells) : std::span<const Cell>();
}

bool TerminalScreen::Continues(std::int64_t line) const {
    const TerminalLine* const found = mLines.Find(line);
    return found && found->continues;
}

std::int64_t TerminalScreen::ArrivedAt(std::int64_t line) const {
    const TerminalLine* const found = mLines.Find(line);
    return found ? found->arrivedAt : 0;
}

void TerminalScreen::ClearHistory() {
    mLines.Drop(IndexOf(0));
    mAllDirty = true;
}

void TerminalScreen::Resize(int columns, int rows) {
    columns = std::clamp(columns, 1, kMostColumns);
    rows = std::clamp(rows, 1, kMostRows);
    if (columns == mColumns && rows == mRows) return;
    if (mAlternate) {
        ScreenCursor cursor = mCursor;
        SwapScreens();
        mCursor.row = std::min(mSaved[0].cursor.row, mRows - 1);
        ResizeMain(columns, rows);
        mSaved[0].cursor.row = mCursor.row;
        // Without history, lines above the cursor go first where it would leave the screen.
        const int lost = std::max(0, cursor.row + 1 - rows);
        std::rotate(mOther.begin(), mOther.begin() + lost, mOther.end());
        cursor.row -= lost;
        for (std::size_t row = Number(rows); row < mOther.size(); ++row)
            mLines.Release(mOther[row]);
        mOther.resize(Number(rows));
        SwapScreens();
        mCursor = cursor;
    } else {
        ResizeMain(columns, rows);
    }
    mTop = 0;
    mBottom = mRows - 1;
    PlaceCursor(mCursor.row, mCursor.column);
    mAllDirty = true;
}

void TerminalScreen::ResizeMain(int columns, int rows) {
    mColumns = columns;
    if (rows < mRows) DropBlankLines(mRows - rows);
    // Fewer rows move the upper ones into the history; more rows bring them back.
    const int shift = std::min(rows - mRows, static_cast<int>(mLines.Count()) - mRows);
    mRows += shift;
    mCursor.row += shift;
    while (mRows < rows) {
        AddLine();
        ++mRows;
    }
}

void TerminalScreen::SwapScreens() {
    for (int row = 0; row < mRows; ++row) std::swap(Row(row), mOther[Number(row)]);
}

void TerminalScreen::ShowAlternate(bool alternate) {
    if (alternate == mAlternate) return;
    if (alternate) mOther.resize(Number(mRows));
    SwapScreens();
    if (!alternate) {
        for (TerminalLine& line : mOther) mLines.Release(line);
        mOther.clear();
    }
    mAlternate = alternate;
    mWrapPending = false;
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
        const std::size_t room = Number(mColumns - mCursor.column);
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
    mCursor.column = 0;
    const bool moves = mCursor.row == mBottom || mCursor.row < mRows - 1;
    Index();
    if (moves) JoinToLineAbove(mCursor.row, true);
}

/// Writes what fits into the cursor's row; moves the cursor past it, or to the last column.
void TerminalScreen::Put(std::u32string_view characters) {
    if (modes.insert) InsertCharacters(static_cast<int>(characters.size()));
    TerminalLine& line = LineToChange();
    if (line.arrivedAt == 0) line.arrivedAt = mNow;
    const std::size_t from = Number(mCursor.column);
    const std::size_t end = from + characters.size();
    if (line.cells.size() < end) mLines.Extend(line, end, Number(mColumns));
    Cell cell = pen;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        cell.character = characters[i];
        line.cells[from + i] = cell;
    }
    mCursor.column = std::min(static_cast<int>(end), mColumns - 1);
}

void TerminalScreen::CarriageReturn() {
    PlaceCursor(mCursor.row, 0);
    if (modes.returnFeeds) LineFeed();
}

void TerminalScreen::LineFeed() {
    if (modes.lineFeedReturns) mCursor.column = 0;
    Index();
}

void TerminalScreen::NextLine() {
    mCursor.column = 0;
    Index();
}

void TerminalScreen::Index() {
    mWrapPending = false;
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

void TerminalScreen::TabBy(int count) {
    const int step = count < 0 ? -1 : 1;
    const int edge = count < 0 ? 0 : mColumns - 1;
    int column = mCursor.column;
    for (; count != 0 && column != edge; count -= step) {
        do column += step;
        while (column != edge && !mTabStops.test(Number(column)));
    }
    if (column != mCursor.column) PlaceCursor(mCursor.row, column);
}

void TerminalScreen::NewPage() {
    if (!mAlternate) {
        int used = mRows;
        while (used > 0 && Row(used - 1).cells.empty()) --used;
        for (; used > 0; --used) AddLine();
    }
    BlankRows(0, mRows);
    PlaceCursor(0, 0);
    mScrolled = false;
    mAllDirty = true;
}

void TerminalScreen::ShowCursor(bool visible) {
    modes.cursorVisible = visible;
    MarkDirty(mCursor.row);
}

void TerminalScreen::ReverseScreen(bool on) {
    mAllDirty = mAllDirty || modes.reverseScreen != on;
    modes.reverseScreen = on;
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

ScreenCursor TerminalScreen::CountedCursor() const {
    return {mCursor.row - (modes.originMode ? mTop : 0), mCursor.column};
}

void TerminalScreen::MoveBy(int rows, int columns) {
    const int top = mCursor.row >= mTop ? mTop : 0;
    const int bottom = mCursor.row <= mBottom ? mBottom : mRows - 1;
    PlaceCursor(std::clamp(mCursor.row + rows, top, bottom), mCursor.column + columns);
}

void TerminalScreen::SaveCursor() {
    SavedState() = {mCursor, pen, sets, modes.originMode, mWrapPending};
}

void TerminalScreen::RestoreCursor() {
    const Saved saved = SavedState();
    pen = saved.pen;
    sets = saved.sets;
    modes.originMode = saved.originMode;
    PlaceCursor(saved.cursor.row, saved.cursor.column);
    mWrapPending = saved.wrapPending && mCursor.column == mColumns - 1;
}

// --- erasing and moving ----------------------------------------------------------------------

Cell TerminalScreen::Erased() const {
    Cell cell;
    cell.background = pen.background;
    return cell;
}

/// Erases the columns `from` to `to` (exclusive) of a row. Trailing blanks are not stored unless
/// they have a background.
void TerminalScreen::Blank(int row, int from, int to) {
    TerminalLine& line = Row(row);
    std::vector<Cell>& cells = line.cells;
    const Cell erased = Erased();
    const bool shows = erased != Cell{};
    if (Number(to) >= cells.size()) cells.resize(std::min(cells.size(), Number(from)));
    const int end = std::min(to, mColumns);
    if (shows && Number(end) > cells.size()) mLines.Extend(line, Number(end), Number(mColumns));
    if (from == 0 && to >= mColumns) line.arrivedAt = 0;
    const std::size_t last = std::min(cells.size(), Number(to));
    if (Number(from) < last)
        std::fill(cells.begin() + from, cells.begin() + static_cast<std::ptrdiff_t>(last), erased);
    line.continues = false;
    MarkDirty(row);
}

void TerminalScreen::BlankRows(int first, int end) {
    for (int row = first; row < end; ++row) Blank(row, 0, kMostColumns);
}

void TerminalScreen::JoinToLineAbove(int row, bool continues) {
    const std::size_t index = IndexOf(row);
    // Above the alternate screen are lines of the main one.
    if (index > 0 && (row > 0 || !mAlternate)) mLines.At(index - 1).continues = continues;
}

void TerminalScreen::EraseLine(Erase extent) {
    mWrapPending = false;
    Blank(mCursor.row, extent == Erase::ToEnd ? mCursor.column : 0,
          extent == Erase::ToStart ? mCursor.column + 1 : kMostColumns);
}

void TerminalScreen::EraseDisplay(Erase extent) {
    if (extent == Erase::All && mScrolled && !mAlternate) {
        const ScreenCursor cursor = mCursor;
        NewPage();
        PlaceCursor(cursor.row, cursor.column);
        return;
    }
    if (extent == Erase::All) JoinToLineAbove(0, false);
    EraseLine(extent);
    if (extent != Erase::ToStart) BlankRows(extent == Erase::All ? 0 : mCursor.row + 1, mRows);
    if (extent == Erase::ToStart) BlankRows(0, mCursor.row);
}

void TerminalScreen::EraseCharacters(int count) {
    mWrapPending = false;
    Blank(mCursor.row, mCursor.column,
          std::min(mColumns, mCursor.column + std::clamp(count, 0, kMostColumns)));
}

void TerminalScreen::Align() {
    ScrollRegion(0, mRows - 1);
    PlaceCursor(0, 0);
    const Cell drawn = std::exchange(pen, {});
    for (int row = 0; row < mRows; ++row) {
        Blank(row, 0, kMostColumns);
        TerminalLine& line = Row(row);
        mLines.Extend(line, Number(mColumns), Number(mColumns));
        std::ranges::fill(line.cells, Cell{U'E'});
        line.arrivedAt = mNow;
    }
    pen = drawn;
}

void TerminalScreen::ClearForColumns() {
    ScrollRegion(0, mRows - 1);
    PlaceCursor(0, 0);
    EraseDisplay(Erase::All);
}

/// The cursor's line, about to change.
TerminalLine& TerminalScreen::LineToChange() {
    TerminalLine& line = Row(mCursor.row);
    line.continues = false;
    mWrapPending = false;
    MarkDirty(mCursor.row);
    return line;
}

/// With a background for the blanks that come, the whole row, otherwise its written part.
std::span<Cell> TerminalScreen::CellsToMove() {
    TerminalLine& line = LineToChange();
    const std::size_t width = Number(mColumns);
    if (Erased() != Cell{} && line.cells.size() < width) mLines.Extend(line, width, width);
    const std::size_t end = std::min(line.cells.size(), width);
    return std::span(line.cells).first(end).subspan(std::min(Number(mCursor.column), end));
}

void TerminalScreen::InsertCharacters(int count) {
    TerminalLine& line = Row(mCursor.row);
    const std::size_t width = Number(mColumns);
    const std::size_t used = line.cells.size();
    const std::size_t inserted = Number(std::clamp(count, 0, mColumns - mCursor.column));
    if (used > Number(mCursor.column) && used < width)
        mLines.Extend(line, std::min(used + inserted, width), width);
    const std::span<Cell> cells = CellsToMove();
    const auto at = cells.begin() + static_cast<std::ptrdiff_t>(std::min(inserted, cells.size()));
    std::fill(cells.begin(), std::shift_right(cells.begin(), cells.end(), at - cells.begin()),
              Erased());
}

void TerminalScreen::DeleteCharacters(int count) {
    const std::span<Cell> cells = CellsToMove();
    const int deleted = std::clamp(count, 0, static_cast<int>(cells.size()));
    std::fill(std::shift_left(cells.begin(), cells.end(), deleted), cells.end(), Erased());
    std::vector<Cell>& stored = Row(mCursor.row).cells;
    const bool isEnd = stored.size() <= Number(mColumns);
    if (isEnd && Erased() == Cell{}) stored.resize(stored.size() - Number(deleted));
}

void TerminalScreen::MoveRows(int top, int count) {
    const int rows = mBottom - top + 1;
    const bool up = count > 0;
    const int steps = std::min(up ? count : -count, rows);
    JoinToLineAbove(top, false);
    RotateRows(top, mBottom, up ? steps : rows - steps);
    if (up) BlankRows(mBottom + 1 - steps, mBottom + 1);
    if (!up) BlankRows(top, top + steps);
    // The last row that moved no longer borders the one in which it continued.
    if (up && steps < rows) Row(mBottom - steps).continues = false;
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
    if (mTop != 0 || mAlternate) {
        MoveRows(mTop, std::max(count, 0));
        return;
    }
    const int lines = std::clamp(count, 0, mBottom + 1);
    for (int i = 0; i < lines; ++i) AddLine();
    // Rows below the region stay in place.
    RotateRows(mBottom + 1 - lines, mRows - 1, mRows - 1 - mBottom);
    const int firstNew = mBottom + 1 - lines;
    if (lines > 0) JoinToLineAbove(firstNew, false);
    if (pen.background != kDefaultColour) BlankRows(firstNew, mBottom + 1);
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
    ShowAlternate(false);
    const bool returnFeeds = modes.returnFeeds;  // set by the program, not by received sequences
    modes = {.returnFeeds = returnFeeds};
    pen = {};
    sets = {};
    mSaved = {};
    mTop = 0;
    mBottom = mRows - 1;
    mTabStops.reset();
    for (int column = 0; column < kMostColumns; column += kTabWidth) mTabStops.set(Number(column));
    NewPage();
}

void TerminalScreen::SoftReset() {
    const ScreenModes before = modes;
    modes = {.lineFeedReturns = before.lineFeedReturns,
             .returnFeeds = before.returnFeeds,
             .reverseScreen = before.reverseScreen};
    pen = {};
    sets = {};
    SavedState() = {};
    mTop = 0;
    mBottom = mRows - 1;
    MarkDirty(mCursor.row);
}

}  // namespace vantor
