#include "platform/win32/terminal/Win32CellLooks.hpp"

#include <array>
#include <cstdlib>
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

}  // namespace

bool HighContrast() {
    HIGHCONTRASTW choice{};
    choice.cbSize = sizeof choice;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof choice, &choice, 0) != 0 &&
           (choice.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

CellColours ColoursOf(const Cell& cell, bool selected, bool systemOnly) {
    CellColours colours = {GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW)};
    if (!systemOnly)
        colours = {ColourOf(cell.foreground, COLOR_WINDOWTEXT),
                   ColourOf(cell.background, COLOR_WINDOW)};
    const bool bothChosen = cell.foreground < kDefaultColour && cell.background < kDefaultColour;
    if (!systemOnly && !bothChosen) colours = Readable(colours);
    if ((cell.flags & kReversed) != 0) std::swap(colours.ink, colours.ground);
    if (selected) colours = {GetSysColor(COLOR_HIGHLIGHTTEXT), GetSysColor(COLOR_HIGHLIGHT)};
    if ((cell.flags & kConcealed) != 0) colours.ink = colours.ground;
    return colours;
}

bool LooksLike(const Cell& one, const Cell& other) {
    return one.foreground == other.foreground && one.background == other.background &&
           one.flags == other.flags;
}

wchar_t LetterOf(char character) {
    static const std::array<wchar_t, 256> letters = [] {
        std::array<wchar_t, 256> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            const char byte = static_cast<char>(i);
            table[i] = L' ';
            static_cast<void>(MultiByteToWideChar(CP_ACP, 0, &byte, 1, &table[i], 1));
        }
        return table;
    }();
    return letters[static_cast<unsigned char>(character)];
}

}  // namespace vantor
