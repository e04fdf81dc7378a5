#include "terminal/TerminalSelection.hpp"

#include <algorithm>

#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

std::string Characters(std::span<const Cell> cells, int from, int to) {
    const int size = static_cast<int>(cells.size());
    const int end = std::clamp(to, 0, size);
    std::string text;
    for (int column = std::clamp(from, 0, end); column < end; ++column)
        AppendUtf8(text, cells[static_cast<std::size_t>(column)].character);
    return text;
}

}  // namespace

void TerminalSelection::Set(TextPosition anchor, TextPosition end) {
    mFrom = std::min(anchor, end);
    mTo = std::max(anchor, end);
}

void TerminalSelection::SetAll() {
    std::int64_t end = mScreen.EndLine();
    while (end > mScreen.FirstLine() && mScreen.Line(end - 1).empty()) --end;
    if (end == mScreen.FirstLine()) return Clear();
    // Ends at the current end of the last line, so that text appended later is not selected.
    Set({mScreen.FirstLine(), 0}, {end - 1, static_cast<int>(mScreen.Line(end - 1).size())});
}

std::string TerminalSelection::TextFrom(std::int64_t first) const {
    std::string text;
    first = std::max({first, mFrom.line, mScreen.FirstLine()});
    const std::int64_t last = std::min(mTo.line, mScreen.EndLine() - 1);
    std::size_t lineStart = 0;  // of the last line in `text`
    for (std::int64_t line = first; line <= last; ++line) {
        const int from = line == mFrom.line ? mFrom.column : 0;
        const int to = line == mTo.line ? mTo.column : TerminalScreen::kMostColumns;
        text += Characters(mScreen.Line(line), from, to);
        if (line == last || mScreen.Continues(line)) continue;
        text.resize(std::max(text.find_last_not_of(' ') + 1, lineStart));
        text += "\r\n";
        lineStart = text.size();
    }
    text.resize(std::max(text.find_last_not_of(' ') + 1, lineStart));
    return text;
}

}  // namespace vantor
