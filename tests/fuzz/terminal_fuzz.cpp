// Random bytes in chunks of random size on a small terminal screen that is resized in between. The
// screen's invariants are checked after each input.
#include "terminal/TerminalParser.hpp"
#include "terminal/TerminalSelection.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {

std::vector<std::string> Seeds() {
    return {"\x10\x1B[2;3r\x1B[?6hab\r\n\xF5\x08\x1B[1;31mc"};
}

/// The first byte of each chunk gives its length (below 0xF0) or a new screen size.
void Fuzz(std::string_view input) {
    TerminalScreen screen(12, 4, 8);
    TerminalParser parser(screen);
    while (!input.empty()) {
        const int head = static_cast<int>(TakeByte(input));
        if (head >= 0xF0)
            screen.Resize(1 + (head & 3) * 7, 1 + (head >> 2 & 3) * 2);
        else
            parser.Write(Take(input, static_cast<std::size_t>(head)));
    }
    const auto [row, column] = screen.Cursor();
    Require(row >= 0 && row < screen.Rows() && column >= 0 && column < screen.Columns());
    Require(screen.FirstLine() >= 0 && screen.FirstLine() <= screen.TopLine());
    Require(screen.EndLine() - screen.FirstLine() <= 8 + TerminalScreen::kMostRows);
    for (std::int64_t line = screen.FirstLine(); line < screen.EndLine(); ++line)
        Require(screen.Line(line).size() <= TerminalScreen::kMostColumns);
    const ScreenText text(screen);
    TerminalSelection selection(text);
    selection.SetAll();
    for (const char c : selection.Text())
        Require(c == '\r' || c == '\n' || (static_cast<unsigned char>(c) >= ' ' && c != 0x7F));
}

}  // namespace vantor
