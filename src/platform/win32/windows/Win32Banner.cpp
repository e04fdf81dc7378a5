#include "platform/win32/windows/Win32Banner.hpp"

#include <algorithm>

namespace vantor {
namespace {

constexpr COLORREF kNight = RGB(0x12, 0x2b, 0x46);
constexpr COLORREF kDusk = RGB(0x2a, 0x62, 0x8f);
constexpr COLORREF kCase = RGB(0xe4, 0xe9, 0xee);
constexpr COLORREF kGlass = RGB(0x0b, 0x1c, 0x14);
constexpr COLORREF kDigits = RGB(0x6d, 0xf0, 0xa0);

void Fill(HDC target, const RECT& area, COLORREF colour) {
    const HBRUSH brush = CreateSolidBrush(colour);
    FillRect(target, &area, brush);
    DeleteObject(brush);
}

COLORREF Between(COLORREF from, COLORREF to, int part, int whole) {
    const auto mix = [part, whole](int a, int b) { return a + (b - a) * part / whole; };
    return RGB(mix(GetRValue(from), GetRValue(to)), mix(GetGValue(from), GetGValue(to)),
               mix(GetBValue(from), GetBValue(to)));
}

void DrawGradient(HDC target, const RECT& area) {
    constexpr int kBands = 48;
    const int width = area.right - area.left;
    for (int i = 0; i < kBands; ++i) {
        const RECT band = {area.left + width * i / kBands, area.top,
                           area.left + width * (i + 1) / kBands, area.bottom};
        Fill(target, band, Between(kNight, kDusk, i, kBands));
    }
}

/// An indicator: a light case with a dark display.
RECT DrawIndicator(HDC target, const RECT& area) {
    const int height = (area.bottom - area.top) * 3 / 5;
    const int width = height * 2;
    const int left = area.right - width - height / 2;
    const int top = (area.top + area.bottom - height) / 2;
    const RECT body = {left, top, left + width, top + height};
    Fill(target, body, kCase);
    const int edge = height / 8;
    const RECT glass = {body.left + edge, body.top + edge, body.right - edge,
                        body.bottom - height / 3};
    Fill(target, glass, kGlass);
    constexpr int kKeys = 5;
    const int pitch = (width - 2 * edge) / kKeys;
    for (int i = 0; i < kKeys; ++i) {
        const int keyLeft = body.left + edge + i * pitch + pitch / 8;
        const RECT key = {keyLeft, glass.bottom + edge / 2, keyLeft + pitch * 3 / 4,
                          body.bottom - edge / 2};
        Fill(target, key, kDusk);
    }
    return glass;
}

void Write(HDC target, HFONT font, COLORREF colour, const wchar_t* text, RECT area, UINT format) {
    const Win32Selected selected(target, font);
    SetTextColor(target, colour);
    SetBkMode(target, TRANSPARENT);
    DrawTextW(target, text, -1, &area, format | DT_SINGLELINE | DT_VCENTER);
}

}  // namespace

void DrawBanner(Win32Context& context, HDC target, const RECT& area) {
    DrawGradient(target, area);
    const RECT glass = DrawIndicator(target, area);
    Write(target, context.Font(16, true), kDigits, L"0.000 kg", glass, DT_CENTER);
    RECT words = area;
    words.left += context.ToPixels(360);
    words.right = std::max(words.left, glass.left - context.ToPixels(360));
    words.bottom -= (area.bottom - area.top) / 4;
    Write(target, context.Font(24, true), RGB(255, 255, 255), L"Tessmar Vantor", words,
          DT_LEFT | DT_END_ELLIPSIS);
    words.top += (area.bottom - area.top) / 2;
    words.bottom = area.bottom - (area.bottom - area.top) / 12;
    Write(target, context.Font(11, false), kCase, L"M40", words, DT_LEFT);
}

}  // namespace vantor
