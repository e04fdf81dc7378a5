// Random bytes in chunks of random size on a small terminal screen that is resized in between. The
// screen's invariants are checked after each input.
#include "platform/portable/CodePage1252.hpp"
#include "support/text/Unicode.hpp"
#include "terminal/TerminalParser.hpp"
#include "terminal/TerminalSelection.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {

std::vector<std::string> Seeds() {
    return {"\x10\x1B[2;3r\x1B[?6hab\r\n\xF5\x08\x1B[1;31mc",
            "\xE4\x18\x1B[38:2::1:2:3m\xE2\x94\x80\xF0\x9F\x98\x80\xC3\x04\x1B[6n",
            "\xE1\x20\x1B(0q\x0E\x1B[?1049h\x1B#8\x1B[44m\x1B[3P\xF2\x08\x1B[?1049l"};
}

/// The first byte of each chunk gives its length (below 0xE0), an encoding (below 0xF0) or a new
/// screen size.
void Fuzz(std::string_view input) {
    const CodePage1252 system;
    TerminalScreen screen(12, 4, 8);
    TerminalParser parser(screen);
    parser.Reply = [](std::string_view answer) {
        Require(answer.starts_with("\x1B[") && answer.size() < 24);
    };
    while (!input.empty()) {
        const int head = static_cast<int>(TakeByte(input));
        screen.Now(head);
        if (head >= 0xF0)
            screen.Resize(1 + (head & 3) * 7, 1 + (head >> 2 & 3) * 2);
        else if (head >= 0xE0)
            parser.Encoding({static_cast<LineEncoding>(head % 5), system});
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
    const std::string text = selection.Text();
    for (std::string_view rest = text; !rest.empty();) {
        const char32_t c = TakeCodePoint(rest);
        Require(c == U'\r' || c == U'\n' || (c >= U' ' && c != 0x7F && c <= 0x10FFFF));
    }
}

}  // namespace vantor
