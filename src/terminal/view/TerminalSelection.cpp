#include "terminal/view/TerminalSelection.hpp"

#include <algorithm>
#include <string_view>

#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

enum class Kind : std::uint8_t { Blank, Word, Other };

bool IsBetween(char32_t character, char32_t first, char32_t last) {
    return character >= first && character <= last;
}

bool IsOneOf(char32_t character, std::u32string_view characters) {
    return characters.find(character) != std::u32string_view::npos;
}

/// Letters, digits, and what paths, addresses and numbers contain besides them, are in words.
Kind KindOf(char32_t character) {
    if (character == U' ' || character == 0xA0) return Kind::Blank;
    const bool ascii = IsBetween(character, U'a', U'z') || IsBetween(character, U'A', U'Z') ||
                       IsBetween(character, U'0', U'9') || IsOneOf(character, U"_-./:\\@~+%");
    // Punctuation, arrows, mathematical signs and line drawing begin at U+2000.
    const bool beyond = character >= 0xC0 && character != 0xD7 && character != 0xF7 &&
                        !IsBetween(character, 0x2000, 0x2BFF) &&
                        !IsBetween(character, 0x3000, 0x303F);
    const bool letter = IsOneOf(character, U"\u00AA\u00B5\u00BA");
    return ascii || beyond || letter ? Kind::Word : Kind::Other;
}

/// The characters of `cells` in the columns `from` to `to` (exclusive).
void Append(std::string& text, std::span<const Cell> cells, int from, int to) {
    const int end = std::clamp(to, 0, static_cast<int>(cells.size()));
    for (int column = std::clamp(from, 0, end); column < end; ++column)
        AppendUtf8(text, cells[static_cast<std::size_t>(column)].character);
}

/// Drops blanks at the end of the last line.
void TrimEnd(std::string& text) {
    text.resize(text.find_last_not_of(' ') + 1);
}

int LengthOf(const ShownText& text, std::int64_t line) {
    return static_cast<int>(text.Line(line).size());
}

/// Moves a cell left and right over cells of one kind, across wrapped lines.
class WordScan {
public:
    WordScan(const ShownText& text, TextPosition cell) : mText(text), mKind(KindAt(cell)) {}

    bool StepLeft(TextPosition& cell) const {
        TextPosition left = {cell.line, cell.column - 1};
        if (cell.column == 0) {
            if (!mText.Continues(cell.line - 1)) return false;
            left = {cell.line - 1, LengthOf(mText, cell.line - 1) - 1};
        }
        return Step(cell, left);
    }
    bool StepRight(TextPosition& cell) const {
        TextPosition right = {cell.line, cell.column + 1};
        if (right.column >= LengthOf(mText, cell.line)) {
            if (!mText.Continues(cell.line)) return false;
            right = {cell.line + 1, 0};
        }
        return Step(cell, right);
    }

private:
    Kind KindAt(TextPosition cell) const {
        const std::span<const Cell> cells = mText.Line(cell.line);
        const auto column = static_cast<std::size_t>(cell.column);
        return column < cells.size() ? KindOf(cells[column].character) : Kind::Other;
    }
    /// A character of no word is one by itself.
    bool Step(TextPosition& cell, TextPosition next) const {
        if (mKind == Kind::Other || next.column < 0 || KindAt(next) != mKind) return false;
        cell = next;
        return true;
    }

    const ShownText& mText;
    Kind mKind;
};

}  // namespace

void TerminalSelection::Over(const ShownText& text) {
    mShown = &text;
    Clear();
}

void TerminalSelection::Clear() {
    mFrom = mTo = {};
    mAnchor.reset();
    mRectangular = false;
    mBy = SelectBy::Character;
}

void TerminalSelection::Set(TextPosition anchor, TextPosition end) {
    Clear();
    mFrom = std::min(anchor, end);
    mTo = std::max(anchor, end);
    if (!Empty()) mAnchor = {anchor, anchor};
}

void TerminalSelection::SetAll() {
    std::int64_t end = mShown->EndLine();
    while (end > mShown->FirstLine() && mShown->Line(end - 1).empty()) --end;
    if (end == mShown->FirstLine()) return Clear();
    // Ends at the current end of the last line, so that text appended later is not selected.
    Set({mShown->FirstLine(), 0}, {end - 1, LengthOf(*mShown, end - 1)});
}

// --- by the mouse ----------------------------------------------------------------------------

void TerminalSelection::Begin(TextPoint at, SelectBy by, bool rectangular) {
    mRectangular = rectangular;
    mBy = rectangular ? SelectBy::Character : by;
    mAnchor = UnitAt(at);
    mFrom = mAnchor->from;
    mTo = mAnchor->to;
}

void TerminalSelection::ExtendTo(TextPoint at) {
    if (!mAnchor) return Begin(at, SelectBy::Character, false);
    const Range unit = UnitAt(at);
    mFrom = std::min(mAnchor->from, unit.from);
    mTo = std::max(mAnchor->to, unit.to);
    if (!mRectangular) return;
    const auto [left, right] = std::minmax({mAnchor->from.column, unit.from.column});
    mFrom.column = left;
    mTo.column = right;
}

TerminalSelection::Range TerminalSelection::UnitAt(TextPoint at) const {
    const auto [line, column] = at.cell;
    if (mBy == SelectBy::Word) return WordAt(at.cell);
    if (mBy == SelectBy::Line) {
        const std::int64_t last = mShown->WrappedTo(line);
        return {{mShown->WrappedFrom(line), 0}, {last, LengthOf(*mShown, last)}};
    }
    const TextPosition between = {line, column + (at.rightHalf ? 1 : 0)};
    return {between, between};
}

TerminalSelection::Range TerminalSelection::WordAt(TextPosition cell) const {
    const int length = LengthOf(*mShown, cell.line);
    if (cell.column >= length) return {{cell.line, length}, {cell.line, length}};
    const WordScan scan(*mShown, cell);
    TextPosition first = cell;
    TextPosition last = cell;
    while (scan.StepLeft(first)) {
    }
    while (scan.StepRight(last)) {
    }
    return {first, {last.line, last.column + 1}};
}

// --- what is selected ------------------------------------------------------------------------

bool TerminalSelection::Empty() const {
    return mRectangular ? mFrom.column == mTo.column : mFrom == mTo;
}

bool TerminalSelection::Contains(TextPosition position) const {
    if (!mRectangular) return mFrom <= position && position < mTo;
    return position.line >= mFrom.line && position.line <= mTo.line &&
           position.column >= mFrom.column && position.column < mTo.column;
}

std::string TerminalSelection::TextFrom(std::int64_t first) const {
    std::string text;
    first = std::max({first, mFrom.line, mShown->FirstLine()});
    const std::int64_t last = std::min(mTo.line, mShown->EndLine() - 1);
    for (std::int64_t line = first; line <= last; ++line) {
        const bool starts = mRectangular || line == mFrom.line;
        const bool ends = mRectangular || line == mTo.line;
        Append(text, mShown->Line(line), starts ? mFrom.column : 0,
               ends ? mTo.column : TerminalScreen::kMostColumns);
        if (line == last || (!mRectangular && mShown->Continues(line))) continue;
        TrimEnd(text);
        text += "\r\n";
    }
    TrimEnd(text);
    return text;
}

}  // namespace vantor
