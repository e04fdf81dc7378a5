#include "terminal/view/TerminalViewport.hpp"

#include <algorithm>

#include "terminal/options/TimeStamp.hpp"

namespace vantor {
namespace {

constexpr std::int64_t kNothingPainted = -1;
constexpr int kWheelNotch = 120;
constexpr std::uint16_t kStampColour = 8;  // grey

/// "12:34:56.789 ", or "+12345.678 " aligned to the right.
int WidthOf(TimeStamps stamps) {
    if (stamps == TimeStamps::Off) return 0;
    return stamps == TimeStamps::TimeOfDay ? 13 : 11;
}

}  // namespace

TerminalViewport::TerminalViewport(TerminalScreen& screen)
    : mScreen(screen), mColumns(screen.Columns()) {}

// --- size and mode ---------------------------------------------------------------------------

void TerminalViewport::Size(int columns, int rows) {
    mColumns = std::clamp(columns, 1, TerminalScreen::kMostColumns);
    const bool sameWidth = mColumns - mGutter == mScreen.Columns();
    const std::int64_t place = OffsetOf(FirstShownLine());
    mScreen.Resize(std::max(mColumns - mGutter, 1), rows);
    FollowAtEnd();
    if (mMode == ViewMode::Text) return;
    mPaintedFirst = kNothingPainted;
    if (sameWidth) return;
    Layout();
    if (mFirst) ScrollTo(LineOf(place));
}

void TerminalViewport::Choose(const TerminalOptions& options) {
    if (options.view == mMode && options.controlNotation == mNotation &&
        options.timeStamps == mStamps)
        return;
    const std::int64_t place = OffsetOf(FirstShownLine());
    const bool staysText = options.view == ViewMode::Text && mMode == ViewMode::Text;
    mMode = options.view;
    mNotation = options.controlNotation;
    mStamps = options.timeStamps;
    mGutter = WidthOf(mStamps);
    mScreen.Resize(std::max(mColumns - mGutter, 1), mScreen.Rows());
    Layout();
    if (mFirst && !staysText) ScrollTo(LineOf(place));
}

void TerminalViewport::Decode(const ByteDecoder& decoder) {
    if (decoder.SameAs(mDecoder)) return;
    const std::int64_t place = OffsetOf(FirstShownLine());
    mDecoder = decoder;
    if (mMode == ViewMode::Text) return;
    Layout();
    if (mFirst) ScrollTo(LineOf(place));
}

/// Divides the bytes into lines for the mode; what is selected and found was in other lines.
void TerminalViewport::Layout() {
    const bool wasText = mText == &mScreenText;
    const int columns = std::max(mColumns - mGutter, 1);
    mText = &mScreenText;
    if (mMode == ViewMode::ControlCharacters) {
        mControlText.Layout(columns, mNotation, mDecoder);
        mText = &mControlText;
    } else if (mMode == ViewMode::Hex) {
        mHexText.Layout(columns, mDecoder);
        mText = &mHexText;
    }
    if (wasText && mMode == ViewMode::Text) return;
    mPaintedFirst = kNothingPainted;
    mSelection.Over(*mText);
    mHit.reset();
}

/// The received bytes that `line` shows; in the text roughly.
std::int64_t TerminalViewport::OffsetOf(std::int64_t line) const {
    if (mMode == ViewMode::Text) return mPlaces.OffsetOf(line);
    return mMode == ViewMode::Hex ? mHexText.OffsetOf(line) : mControlText.OffsetOf(line);
}

std::int64_t TerminalViewport::LineOf(std::int64_t offset) const {
    if (mMode == ViewMode::Text) return mPlaces.LineOf(offset);
    return mMode == ViewMode::Hex ? mHexText.LineOf(offset) : mControlText.LineOf(offset);
}

// --- rows to paint ---------------------------------------------------------------------------

ShownRow TerminalViewport::Row(int row) const {
    const std::int64_t line = FirstShownLine() + row;
    MarkLine(line);
    if (mGutter > 0) {
        mCells.clear();
        AppendStamp(line);
    }
    std::span<const Cell> cells = mText->Line(line);
    if (mGutter > 0) {
        mCells.insert(mCells.end(), cells.begin(), cells.end());
        cells = mCells;
    }
    return {cells.first(std::min(cells.size(), static_cast<std::size_t>(mColumns))), mMarks};
}

/// Lines that continue the one above have none.
void TerminalViewport::AppendStamp(std::int64_t line) const {
    std::string stamp;
    const std::optional<std::int64_t> time = mText->ArrivedAt(line);
    if (time && !mText->Continues(line - 1))
        stamp = StampText(mStamps, *time, ArrivedBefore(line).value_or(*time));
    const auto width = static_cast<std::size_t>(mGutter);
    if (stamp.size() < width) stamp.insert(0, width - stamp.size(), ' ');
    for (const char c : stamp.substr(stamp.size() - width))
        mCells.push_back({.character = static_cast<unsigned char>(c), .foreground = kStampColour});
}

/// When the last line above `line` arrived that has a time: blank ones have none.
std::optional<std::int64_t> TerminalViewport::ArrivedBefore(std::int64_t line) const {
    std::optional<std::int64_t> time;
    while (!time && line > FirstLine()) {
        line = mText->WrappedFrom(line - 1);
        time = mText->ArrivedAt(line);
    }
    return time;
}

/// Fills `mMarks` with the marks of the window's row that shows `line`; with none if it has none.
void TerminalViewport::MarkLine(std::int64_t line) const {
    mMarks.clear();
    const bool selected =
        !mSelection.Empty() && line >= mSelection.From().line && line <= mSelection.To().line;
    if (!selected && !mSearch) return;
    mMarks.resize(static_cast<std::size_t>(mColumns));
    const std::span<Mark> marks =
        std::span<Mark>(mMarks).subspan(static_cast<std::size_t>(std::min(mGutter, mColumns)));
    if (mSearch) MarkHits(line, marks);
    for (std::size_t column = 0; column < marks.size() && selected; ++column)
        if (mSelection.Contains({line, static_cast<int>(column)})) marks[column] = Mark::Selected;
}

void TerminalViewport::MarkHits(std::int64_t line, std::span<Mark> marks) const {
    const std::vector<TerminalSearch::Part> parts = mSearch->PartsIn(*mText, line);
    if (parts.empty()) return;
    for (std::size_t column = 0; column < marks.size(); ++column) {
        const int index = mText->SearchIndex(static_cast<int>(column));
        for (const TerminalSearch::Part& part : parts)
            if (index >= part.from && index < part.to && marks[column] != Mark::CurrentHit)
                marks[column] = part.start == mHit ? Mark::CurrentHit : Mark::Hit;
    }
}

std::optional<ScreenCursor> TerminalViewport::Cursor() const {
    if (mMode != ViewMode::Text || !mScreen.modes.cursorVisible) return {};
    const auto [row, column] = mScreen.Cursor();
    const std::int64_t shown = row + mScreen.TopLine() - FirstShownLine();
    if (shown >= Rows() || column + mGutter >= mColumns) return {};
    return ScreenCursor{static_cast<int>(shown), column + mGutter};
}

bool TerminalViewport::Dirty(int row) const {
    if (row < 0 || row >= Rows()) return false;
    const std::int64_t first = FirstShownLine();
    if (first != mPaintedFirst) return true;
    if (mMode == ViewMode::Text) return mScreen.Dirty(static_cast<int>(row + first - TopLine()));
    // The last line can have become longer.
    return mPaintedBytes != mBytes.End() && first + row >= mPaintedLines - 1;
}

bool TerminalViewport::AnyDirty() const {
    if (mMode == ViewMode::Text && FirstShownLine() == mPaintedFirst) return mScreen.AnyDirty();
    for (int row = 0; row < Rows(); ++row)
        if (Dirty(row)) return true;
    return false;
}

void TerminalViewport::Clean() {
    mScreen.Clean();
    mPaintedFirst = FirstShownLine();
    mPaintedLines = EndLine();
    mPaintedBytes = mBytes.End();
}

// --- scrolling -------------------------------------------------------------------------------

std::int64_t TerminalViewport::TopLine() const {
    return std::max(EndLine() - Rows(), FirstLine());
}

std::int64_t TerminalViewport::FirstShownLine() const {
    if (!mFirst) return TopLine();
    return std::clamp(*mFirst, FirstLine(), TopLine());
}

/// Ends a scroll position above the newest text when nothing is left of it.
void TerminalViewport::FollowAtEnd() {
    if (FirstShownLine() == TopLine()) mFirst.reset();
}

bool TerminalViewport::ScrollTo(std::int64_t firstLine) {
    const std::int64_t before = FirstShownLine();
    mFirst = firstLine;
    if (firstLine >= TopLine()) mFirst.reset();
    return FirstShownLine() != before;
}

bool TerminalViewport::Scroll(ScrollStep step) {
    const int page = std::max(Rows() - 1, 1);
    switch (step) {
        case ScrollStep::LineUp:
            return ScrollBy(-1);
        case ScrollStep::LineDown:
            return ScrollBy(1);
        case ScrollStep::PageUp:
            return ScrollBy(-page);
        case ScrollStep::PageDown:
            return ScrollBy(page);
        case ScrollStep::Start:
            return ScrollTo(FirstLine());
        case ScrollStep::End:
            return ScrollToNewest();
    }
    return false;
}

bool TerminalViewport::Wheel(int movement, int linesPerNotch) {
    mWheel += movement;
    const int notches = mWheel / kWheelNotch;
    mWheel -= notches * kWheelNotch;
    return ScrollBy(-notches * std::clamp(linesPerNotch, 0, std::max(Rows() - 1, 1)));
}

void TerminalViewport::ScrollIntoView(std::int64_t line) {
    const std::int64_t first = FirstShownLine();
    if (line < first || line >= first + Rows()) ScrollTo(line - Rows() / 2);
}

// --- selecting -------------------------------------------------------------------------------

TextPoint TerminalViewport::PointAt(MouseCell at) const {
    const int row = std::clamp(at.row, 0, Rows() - 1);
    const int column = at.column - mGutter;
    const int last = std::max(mColumns - mGutter, 1) - 1;
    const TextPosition cell = {FirstShownLine() + row, std::clamp(column, 0, last)};
    return {cell, column > last || (column >= 0 && at.rightHalf)};
}

void TerminalViewport::BeforeChange() {
    // Only text on the screen can be overwritten; lines in the history cannot change.
    if (mMode != ViewMode::Text) return;
    mOverwritableFrom = mScreen.TopLine();
    mOverwritable = mSelection.TextFrom(mOverwritableFrom);
}

bool TerminalViewport::SelectionLost() const {
    if (mSelection.Empty()) return false;
    if (mSelection.To().line < FirstLine()) return true;
    return mMode == ViewMode::Text && mSelection.TextFrom(mOverwritableFrom) != mOverwritable;
}

// --- searching -------------------------------------------------------------------------------

Found TerminalViewport::Find(std::string_view text, FindOptions options) {
    if (text.empty()) {
        EndFind();
        return Found::Nothing;
    }
    const TerminalSearch wanted(text, options.matchCase);
    const bool again = mSearch == wanted;  // then the current hit does not count
    mSearch = wanted;
    const auto search = [&](TextPosition from, std::int64_t lastLine) {
        return options.backwards ? mSearch->Previous(*mText, from, lastLine)
                                 : mSearch->Next(*mText, from, lastLine);
    };
    const std::int64_t first = FirstLine();
    const std::int64_t end = EndLine();
    const std::int64_t shown = FirstShownLine();
    TextPosition from = {options.backwards ? shown + Rows() : shown, 0};
    if (mHit) from = {mHit->line, mHit->column + (again != options.backwards ? 1 : 0)};
    Found found = Found::Hit;
    mHit = search(from, options.backwards ? first : end);
    if (!mHit) {
        found = Found::HitAfterWrapping;
        mHit = search({options.backwards ? end : first, 0}, from.line);  // not the same twice
    }
    if (!mHit) return Found::Nothing;
    ScrollIntoView(mHit->line);
    return found;
}

void TerminalViewport::EndFind() {
    mSearch.reset();
    mHit.reset();
}

// --- the text --------------------------------------------------------------------------------

void TerminalViewport::Received(std::string_view bytes, std::int64_t timeMs) {
    Shown();  // where the first of them begin
    mBytes.Append(bytes, timeMs);
    if (mMode == ViewMode::ControlCharacters) mControlText.Update();
}

void TerminalViewport::Shown() {
    FollowAtEnd();
    mPlaces.Add(mScreen.TopLine() + mScreen.Cursor().row, mBytes.End());
}

void TerminalViewport::ClearScrollback() {
    mScreen.ClearHistory();
    mBytes.Clear();
    mPlaces.Clear();
    mControlText.Update();
    mSelection.Clear();
    mHit.reset();
    ScrollToNewest();
}

}  // namespace vantor
