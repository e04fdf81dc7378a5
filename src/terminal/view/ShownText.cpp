#include "terminal/view/ShownText.hpp"

#include <algorithm>

namespace vantor {

void ShownText::Searched(std::int64_t line, SearchIn what, std::u32string& seen) const {
    std::span<const Cell> cells;
    if (what == SearchIn::Characters) cells = Line(line);
    seen.resize(cells.size());
    std::ranges::transform(cells, seen.begin(), &Cell::character);
}

std::int64_t ShownText::WrappedFrom(std::int64_t line) const {
    while (line > FirstLine() && Continues(line - 1)) --line;
    return line;
}

std::int64_t ShownText::WrappedTo(std::int64_t line) const {
    while (line + 1 < EndLine() && Continues(line)) ++line;
    return line;
}

std::optional<std::int64_t> ScreenText::ArrivedAt(std::int64_t line) const {
    const std::int64_t time = mScreen.ArrivedAt(line);
    if (time == 0) return {};
    return time;
}

}  // namespace vantor
