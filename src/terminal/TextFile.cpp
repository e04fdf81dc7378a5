#include "terminal/TextFile.hpp"

#include <algorithm>

#include "terminal/TerminalSelection.hpp"

namespace vantor {

void WriteText(const ShownText& text, OutputFile& file) {
    constexpr std::int64_t kLinesAtOnce = 1000;
    TerminalSelection all(text);
    all.SetAll();
    if (all.Empty()) return;
    const std::int64_t end = all.To().line + 1;
    for (std::int64_t first = text.FirstLine(); first < end;) {
        const std::int64_t last =
            std::min(text.WrappedTo(std::min(first + kLinesAtOnce, end) - 1), end - 1);
        TerminalSelection piece(text);
        piece.Set({first, 0}, {last, static_cast<int>(text.Line(last).size())});
        file.Write(piece.Text() + "\r\n");
        first = last + 1;
    }
}

}  // namespace vantor
