// Random bytes, in random portions, on a small screen that changes its size meanwhile. Beside what
// the sanitizers see, the screen's own promises are checked at the end of each run.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>

#include "controls/TerminalParser.hpp"
#include "controls/TerminalScreen.hpp"
#include "controls/TerminalSelection.hpp"

namespace vantor {
namespace {

constexpr std::size_t kHistoryLines = 8;

void Require(bool holds) {
    if (!holds) std::abort();
}

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

/// The first byte of each portion says how long it is, or that the size changes.
void Run(std::string_view input) {
    TerminalScreen screen(12, 4, kHistoryLines);
    TerminalParser parser(screen);
    while (!input.empty()) {
        const auto head = static_cast<unsigned char>(input.front());
        input.remove_prefix(1);
        if (head >= 0xF0) {
            screen.Resize(1 + (head & 3) * 7, 1 + (head >> 2 & 3) * 2);
            continue;
        }
        const std::string_view portion = input.substr(0, head);
        parser.Write(portion);
        input.remove_prefix(portion.size());
    }
    Check(screen);
}

}  // namespace
}  // namespace vantor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vantor::Run({reinterpret_cast<const char*>(data), size});
    return 0;
}
