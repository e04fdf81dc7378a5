#include "platform/win32/terminal/Win32TerminalPaint.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>
#include <utility>

namespace vantor {
namespace {

constexpr std::array<COLORREF, kDefaultColour> kPalette = {
    RGB(0, 0, 0),       RGB(170, 0, 0),    RGB(0, 130, 0),    RGB(150, 90, 0),
    RGB(0, 0, 170),     RGB(150, 0, 150),  RGB(0, 130, 130),  RGB(192, 192, 192),
    RGB(110, 110, 110), RGB(255, 60, 60),  RGB(40, 190, 40),  RGB(230, 190, 0),
    RGB(70, 90, 255),   RGB(230, 70, 230), RGB(30, 190, 190), RGB(255, 255, 255)};

COLORREF ColourOf(std::uint8_t colour, int otherwise) {
    return colour < kDefaultColour ? kPalette[colour] : GetSysColor(otherwise);
}

/// Luminance, from 0 for black to 255 for white.
int Brightness(COLORREF colour) {
    return (299 * GetRValue(colour) + 587 * GetGValue(colour) + 114 * GetBValue(colour)) / 1000;
}

/// `colours`, with black or white text when the contrast is too low.
CellColours Readable(CellColours colours) {
    constexpr int kLeastDifference = 80;
    constexpr int kMiddle = 128;
    const int ground = Brightness(colours.ground);
    if (std::abs(Brightness(colours.ink) - ground) < kLeastDifference)
        colours.ink = ground < kMiddle ? RGB(255, 255, 255) : RGB(0, 0, 0);
    return colours;
}

/// SPI_GETHIGHCONTRAST.
bool HighContrast() {
    HIGHCONTRASTW choice{};
    choice.cbSize = sizeof choice;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof choice, &choice, 0) != 0 &&
           (choice.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

bool LooksLike(const Cell& one, const Cell& other) {
    return one.foreground == other.foreground && one.background == other.background &&
           one.flags == other.flags;
}

/// One paint of a terminal.
struct Painter {
    TerminalControl& control;
    const Win32TerminalFont& font;
    HDC target;
    bool highContrast;

    void PaintRow(int row) const {
        const auto columns = static_cast<std::size_t>(control.Screen().Columns());
        const std::int64_t line = control.FirstShownLine() + row;
        std::array<Cell, TerminalScreen::kMostColumns> cells{};
        const std::span<const Cell> written = control.Screen().Line(line);
        std::copy_n(written.begin(), std::min(written.size(), columns), cells.begin());
        const auto selected = [&](std::size_t column) {
            return control.Selection().Contains({line, static_cast<int>(column)});
        };
        for (std::size_t from = 0; from < columns;) {
            std::size_t to = from + 1;
            while (to < columns && LooksLike(cells[to], cells[from]) &&
                   selected(to) == selected(from))
                ++to;
            const auto left = static_cast<int>(from) * font.width;
            PaintRun({left, row * font.height}, std::span(cells).subspan(from, to - from),
                     selected(from));
            from = to;
        }
    }

    /// Cells with equal attributes, from the pixel `at`. Blinking is not animated:
    /// an idle window must use no processor time.
    void PaintRun(POINT at, std::span<const Cell> run, bool selected) const {
        std::array<wchar_t, TerminalScreen::kMostColumns> text{};
        std::array<INT, TerminalScreen::kMostColumns> steps{};
        std::ranges::transform(run, text.begin(),
                               [](const Cell& cell) { return LetterOf(cell.character); });
        std::fill_n(steps.begin(), run.size(), font.width);
        const Cell& look = run.front();
        const CellColours colours =
            ColoursOf(look, {.selected = selected, .highContrast = highContrast});
        const auto count = static_cast<int>(run.size());
        RECT area = {at.x, at.y, at.x + count * font.width, at.y + font.height};
        SelectObject(target, ((look.flags & kBold) != 0 ? font.bold : font.plain).get());
        SetTextColor(target, colours.ink);
        SetBkColor(target, colours.ground);
        ExtTextOutW(target, static_cast<int>(at.x), static_cast<int>(at.y),
                    ETO_OPAQUE | ETO_CLIPPED, &area, text.data(), static_cast<UINT>(count),
                    steps.data());
        if ((look.flags & kUnderlined) == 0) return;
        area.top = area.bottom - 1;
        SetBkColor(target, colours.ink);
        ExtTextOutW(target, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
    }
};

}  // namespace

CellColours ColoursOf(const Cell& cell, CellState state) {
    CellColours colours = {GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW)};
    if (!state.highContrast) {
        colours = {ColourOf(cell.foreground, COLOR_WINDOWTEXT),
                   ColourOf(cell.background, COLOR_WINDOW)};
        const bool bothChosen =
            cell.foreground < kDefaultColour && cell.background < kDefaultColour;
        if (!bothChosen) colours = Readable(colours);
    }
    if ((cell.flags & kReversed) != 0) std::swap(colours.ink, colours.ground);
    if (state.selected) colours = {GetSysColor(COLOR_HIGHLIGHTTEXT), GetSysColor(COLOR_HIGHLIGHT)};
    if ((cell.flags & kConcealed) != 0) colours.ink = colours.ground;
    return colours;
}

wchar_t LetterOf(char character) {
    static const std::array<wchar_t, 256> letters = [] {
        std::array<wchar_t, 256> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            const char byte = static_cast<char>(i);
            table[i] = L' ';
            MultiByteToWideChar(CP_ACP, 0, &byte, 1, &table[i], 1);
        }
        return table;
    }();
    return letters[static_cast<unsigned char>(character)];
}

void PaintTerminal(TerminalControl& control, const Win32TerminalFont& font, HDC target,
                   const RECT& area, const RECT& client) {
    const TerminalScreen& screen = control.Screen();
    const Painter painter = {control, font, target, HighContrast()};
    const int first = static_cast<int>(area.top) / font.height;
    const int end = (static_cast<int>(area.bottom) - 1) / font.height + 1;
    {
        const Win32Selected restoresTheFont(target, font.plain.get());
        for (int row = first; row < std::min(end, screen.Rows()); ++row) painter.PaintRow(row);
    }
    RECT right = client;
    right.left = screen.Columns() * font.width;
    RECT below = client;
    below.top = screen.Rows() * font.height;
    FillRect(target, &right, GetSysColorBrush(COLOR_WINDOW));
    FillRect(target, &below, GetSysColorBrush(COLOR_WINDOW));
}

}  // namespace vantor
