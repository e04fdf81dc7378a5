#include "platform/win32/terminal/Win32TerminalColours.hpp"

#include <array>
#include <cstdlib>
#include <utility>

namespace vantor {
namespace {

using Palette = std::array<COLORREF, 16>;

constexpr Palette kOnLight = {
    RGB(0, 0, 0),       RGB(170, 0, 0),    RGB(0, 130, 0),    RGB(150, 90, 0),
    RGB(0, 0, 170),     RGB(150, 0, 150),  RGB(0, 130, 130),  RGB(192, 192, 192),
    RGB(110, 110, 110), RGB(255, 60, 60),  RGB(40, 190, 40),  RGB(230, 190, 0),
    RGB(70, 90, 255),   RGB(230, 70, 230), RGB(30, 190, 190), RGB(255, 255, 255)};
constexpr Palette kOnDark = {
    RGB(0, 0, 0),       RGB(225, 70, 70),   RGB(30, 170, 30),  RGB(200, 150, 30),
    RGB(80, 130, 255),  RGB(200, 90, 200),  RGB(30, 170, 170), RGB(204, 204, 204),
    RGB(128, 128, 128), RGB(255, 120, 110), RGB(80, 220, 80),  RGB(250, 230, 110),
    RGB(130, 170, 255), RGB(240, 140, 240), RGB(90, 220, 220), RGB(255, 255, 255)};

/// From 16 on: a cube of 6 x 6 x 6 colours, then 24 greys.
COLORREF IndexedColour(int index) {
    constexpr std::array kSteps = {0, 95, 135, 175, 215, 255};
    constexpr int kCube = 16;
    constexpr int kGreys = 232;
    if (index >= kGreys) {
        const COLORREF level = 10 * static_cast<COLORREF>(index) - (10 * kGreys - 8);
        return level * RGB(1, 1, 1);
    }
    const auto step = [&kSteps](int number) {
        return kSteps[static_cast<std::size_t>(number % 6)];
    };
    const int place = index - kCube;
    return RGB(step(place / 36), step(place / 6), step(place));
}

COLORREF ColourOf(int colour, COLORREF otherwise, bool dark) {
    if (colour >= kDefaultColour) return otherwise;
    const Palette& palette = dark ? kOnDark : kOnLight;
    const auto index = static_cast<std::size_t>(colour);
    return index < palette.size() ? palette[index] : IndexedColour(colour);
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

/// `colours` with the colours of `mark`.
CellColours Marked(CellColours colours, Mark mark, bool highContrast) {
    switch (mark) {
        case Mark::Selected:
            return {GetSysColor(COLOR_HIGHLIGHTTEXT), GetSysColor(COLOR_HIGHLIGHT)};
        case Mark::CurrentHit:
            if (highContrast)
                return {GetSysColor(COLOR_HIGHLIGHTTEXT), GetSysColor(COLOR_HIGHLIGHT)};
            return {RGB(0, 0, 0), RGB(255, 150, 50)};
        case Mark::Hit:
            if (highContrast) return {colours.ground, colours.ink};
            return {RGB(0, 0, 0), RGB(255, 230, 110)};
        case Mark::None:
            break;
    }
    return colours;
}

}  // namespace

ColourScheme SchemeOf(TerminalControl& control) {
    return {.dark = control.Options().darkScheme,
            .reversed = control.Screen().modes.reverseScreen,
            .highContrast = HighContrast()};
}

CellColours DefaultColours(const ColourScheme& scheme) {
    CellColours colours = {GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW)};
    if (scheme.dark && !scheme.highContrast) colours = {RGB(204, 204, 204), RGB(16, 16, 16)};
    if (scheme.reversed) std::swap(colours.ink, colours.ground);
    return colours;
}

COLORREF Blended(const CellColours& colours, int part) {
    const auto blend = [part](int ink, int ground) {
        return (ink * part + ground * (4 - part)) / 4;
    };
    const auto& [ink, ground] = colours;
    return RGB(blend(GetRValue(ink), GetRValue(ground)), blend(GetGValue(ink), GetGValue(ground)),
               blend(GetBValue(ink), GetBValue(ground)));
}

CellColours ColoursOf(const Cell& cell, const ColourScheme& scheme, Mark mark) {
    CellColours colours = DefaultColours(scheme);
    const bool isFaint = (cell.flags & kFaint) != 0;
    if (!scheme.highContrast) {
        // The palette that contrasts with the default ground.
        const bool dark = scheme.dark != scheme.reversed;
        colours = {ColourOf(static_cast<int>(cell.foreground), colours.ink, dark),
                   ColourOf(static_cast<int>(cell.background), colours.ground, dark)};
        const bool bothChosen =
            cell.foreground < kDefaultColour && cell.background < kDefaultColour;
        if (!bothChosen) colours = Readable(colours);
        if (isFaint) colours.ink = Blended(colours, 2);
    }
    if ((cell.flags & kReversed) != 0) std::swap(colours.ink, colours.ground);
    colours = Marked(colours, mark, scheme.highContrast);
    if ((cell.flags & kConcealed) != 0) colours.ink = colours.ground;
    return colours;
}

}  // namespace vantor
