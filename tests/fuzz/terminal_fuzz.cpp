// Random bytes in chunks of random size on a small terminal screen that is resized in between. The
// screen's invariants are checked after each input.
#include <algorithm>
#include <cstdint>
#include <span>

#include "terminal/TerminalParser.hpp"
#include "terminal/TerminalScreen.hpp"
#include "terminal/TerminalSelection.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {
namespace {

constexpr std::size_t kHistoryLines = 8;

void Check(const TerminalScreen& screen) {
    const auto [row, column] = screen.Cursor();
    Require(row >= 0 && row < screen.Rows() && column >= 0 && column < screen.Columns());
    Require(screen.FirstLine() >= 0 && screen.FirstLine() <= screen.TopLine());
    const auto most = static_cast<std::int64_t>(kHistoryLines + TerminalScreen::kMostRows);
    Require(screen.EndLine() - screen.FirstLine() <= most);
    for (std::int64_t line = screen.FirstLine(); line < screen.EndLine(); ++line) {
        const std::span<const Cell> cells = screen.Line(line);
        Require(cells.size() <= TerminalScreen::kMostColumns);
        Require(std::ranges::none_of(cells, [](const Cell& cell) {
            const auto character = static_cast<unsigned char>(cell.character);
            return character < ' ' || character == 0x7F;
        }));
    }
    TerminalSelection selection(screen);
    selection.SetAll();
    Require(selection.Text().find('\x1B') == std::string::npos);
}

}  // namespace

std::vector<std::string> Seeds() {
    return {"\x10\x1B[2;3r\x1B[?6hab\r\n\xF5\x08\x1B[1;31mc"};
}

/// The first byte of each chunk gives its length (below 0xF0) or a new screen size.
void Fuzz(std::string_view input) {
    TerminalScreen screen(12, 4, kHistoryLines);
    TerminalParser parser(screen);
    while (!input.empty()) {
        const unsigned head = TakeByte(input);
        if (head >= 0xF0)
            screen.Resize(1 + static_cast<int>(head & 3) * 7,
                          1 + static_cast<int>(head >> 2 & 3) * 2);
        else
            parser.Write(Take(input, head));
    }
    Check(screen);
}

}  // namespace vantor
