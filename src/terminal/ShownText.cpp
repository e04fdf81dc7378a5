#include "terminal/ShownText.hpp"

#include <algorithm>

namespace vantor {

std::u32string ShownText::Searched(std::int64_t line, SearchIn what) const {
    if (what == SearchIn::Bytes) return {};
    const std::span<const Cell> cells = Line(line);
    std::u32string text(cells.size(), U' ');
    std::ranges::transform(cells, text.begin(), &Cell::character);
    return text;
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
