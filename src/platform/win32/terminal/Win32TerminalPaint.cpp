#include "platform/win32/terminal/Win32TerminalPaint.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vantor {
namespace {

/// The first 16 of the 256 colours.
constexpr std::array<COLORREF, 16> kNamedColours = {
    RGB(0, 0, 0),       RGB(170, 0, 0),    RGB(0, 130, 0),    RGB(150, 90, 0),
    RGB(0, 0, 170),     RGB(150, 0, 150),  RGB(0, 130, 130),  RGB(192, 192, 192),
    RGB(110, 110, 110), RGB(255, 60, 60),  RGB(40, 190, 40),  RGB(230, 190, 0),
    RGB(70, 90, 255),   RGB(230, 70, 230), RGB(30, 190, 190), RGB(255, 255, 255)};

constexpr unsigned kFirstCube = kNamedColours.size();
constexpr unsigned kFirstGrey = 232;

/// One colour of the cube: 0 to 5 in each part.
constexpr BYTE CubePart(unsigned step) {
    return static_cast<BYTE>(step == 0 ? 0 : 55 + 40 * step);
}

constexpr COLORREF PaletteColour(unsigned colour) {
    if (colour < kFirstCube) return kNamedColours[colour];
    if (colour >= kFirstGrey) {
        return COLORREF{0x010101} * (8 + 10 * (colour - kFirstGrey));
    }
    const unsigned cube = colour - kFirstCube;
    return RGB(CubePart(cube / 36), CubePart(cube / 6 % 6), CubePart(cube % 6));
}

COLORREF ColourOf(unsigned colour, int otherwise) {
    return colour < kDefaultColour ? PaletteColour(colour) : GetSysColor(otherwise);
}

COLORREF Between(COLORREF one, COLORREF other) {
    return RGB((GetRValue(one) + GetRValue(other)) / 2, (GetGValue(one) + GetGValue(other)) / 2,
               (GetBValue(one) + GetBValue(other)) / 2);
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
        std::wstring text;
        std::vector<INT> steps;  // in pixels, one for each wchar_t
        for (const Cell& cell : run) {
            AppendLetter(text, cell.character);
            steps.push_back(font.width);
            steps.resize(text.size());  // 0 for the second half of a surrogate pair
        }
        Cell look = run.front();
        if (control.Screen().modes.reverseScreen) look.flags ^= unsigned{kReversed};
        const CellColours colours =
            ColoursOf(look, {.selected = selected, .highContrast = highContrast});
        const auto count = static_cast<int>(run.size());
        RECT area = {at.x, at.y, at.x + count * font.width, at.y + font.height};
        const bool bold = (look.flags & kBold) != 0;
        const bool italic = (look.flags & kItalic) != 0;
        SelectObject(target, (bold     ? italic ? font.boldItalic : font.bold
                              : italic ? font.italic
                                       : font.plain)
                                 .get());
        SetTextColor(target, colours.ink);
        SetBkColor(target, colours.ground);
        ExtTextOutW(target, static_cast<int>(at.x), static_cast<int>(at.y),
                    ETO_OPAQUE | ETO_CLIPPED, &area, text.data(), static_cast<UINT>(text.size()),
                    steps.data());
        if ((look.flags & kUnderlined) != 0) DrawLine(area, area.bottom - 1, colours.ink);
        if ((look.flags & kStruckOut) != 0) DrawLine(area, area.top + font.height / 2, colours.ink);
    }

    void DrawLine(RECT area, LONG top, COLORREF ink) const {
        area.top = top;
        area.bottom = top + 1;
        SetBkColor(target, ink);
        ExtTextOutW(target, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
    }
};

}  // namespace

void AppendLetter(std::wstring& text, char32_t character) {
    constexpr char32_t kFirstPair = 0x10000;
    if (character < kFirstPair) {
        text += static_cast<wchar_t>(character);
    } else {
        text += static_cast<wchar_t>(0xD7C0 + (character >> 10u));
        text += static_cast<wchar_t>(0xDC00 + (character & 0x3FFu));
    }
}

CellColours ColoursOf(const Cell& cell, CellState state) {
    CellColours colours = {GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW)};
    if (!state.highContrast) {
        colours = {ColourOf(cell.foreground, COLOR_WINDOWTEXT),
                   ColourOf(cell.background, COLOR_WINDOW)};
        const bool bothChosen =
            cell.foreground < kDefaultColour && cell.background < kDefaultColour;
        if (!bothChosen) colours = Readable(colours);
        if ((cell.flags & kFaint) != 0) colours.ink = Between(colours.ink, colours.ground);
    }
    if ((cell.flags & kReversed) != 0) std::swap(colours.ink, colours.ground);
    if (state.selected) colours = {GetSysColor(COLOR_HIGHLIGHTTEXT), GetSysColor(COLOR_HIGHLIGHT)};
    if ((cell.flags & kConcealed) != 0) colours.ink = colours.ground;
    return colours;
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
