#include "platform/win32/drawing/Win32Context.hpp"

#include <algorithm>
#include <cmath>

namespace vantor {
namespace {

constexpr float kTwipsPerInch = 1440;
constexpr float kPointsPerInch = 72;

int ScreenDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = screen == nullptr ? 0 : GetDeviceCaps(screen, LOGPIXELSY);
    if (screen != nullptr) ReleaseDC(nullptr, screen);
    return dpi > 0 ? dpi : USER_DEFAULT_SCREEN_DPI;
}

}  // namespace

Win32Context::Win32Context() : mInstance(GetModuleHandleW(nullptr)), mDpi(ScreenDpi()) {}

int Win32Context::ToPixels(float twips) const {
    return static_cast<int>(std::lround(twips * static_cast<float>(mDpi) / kTwipsPerInch));
}

float Win32Context::ToTwips(int pixels) const {
    return static_cast<float>(pixels) * kTwipsPerInch / static_cast<float>(mDpi);
}

// Edges are rounded, not sizes: adjacent controls stay adjacent at every resolution.
RECT Win32Context::ToPixels(const Place& place) const {
    return {ToPixels(place.left), ToPixels(place.top), ToPixels(place.left + place.width),
            ToPixels(place.top + place.height)};
}

Place Win32Context::ToTwips(const RECT& pixels) const {
    return {ToTwips(pixels.left), ToTwips(pixels.top), ToTwips(pixels.right - pixels.left),
            ToTwips(pixels.bottom - pixels.top)};
}

MONITORINFO Win32Context::MonitorAt(const RECT& place) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    // The nearest monitor always exists; all 0 means that it has just been disconnected.
    GetMonitorInfoW(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST), &info);
    return info;
}

RECT Win32Context::Centred(RECT place) {
    const RECT area = MonitorAt(place).rcWork;
    const LONG right = std::max(area.right - area.left - (place.right - place.left), LONG{0});
    const LONG down = std::max(area.bottom - area.top - (place.bottom - place.top), LONG{0});
    OffsetRect(&place, static_cast<int>(area.left + right / 2 - place.left),
               static_cast<int>(area.top + down / 2 - place.top));
    return place;
}

RECT Win32Context::WindowPlace(const Place& form) const {
    RECT window = ToPixels(form);
    window.bottom += CaptionExcess();
    return window;
}

Place Win32Context::FormPlace(RECT window) const {
    window.bottom -= CaptionExcess();
    return ToTwips(window);
}

int Win32Context::CaptionExcess() const {
    constexpr float kDesignedTwips = 345;
    return std::max(GetSystemMetrics(SM_CYCAPTION) - ToPixels(kDesignedTwips), 0);
}

HFONT Win32Context::Font(float points, bool bold, const std::string& face) {
    for (const CachedFont& each : mFonts)
        if (each.points == points && each.bold == bold && each.face == face) return each.font.get();
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    // On failure the zeros select the default typeface.
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    LOGFONTW wanted = metrics.lfMessageFont;
    wanted.lfHeight =
        -static_cast<LONG>(std::lround(points * static_cast<float>(mDpi) / kPointsPerInch));
    wanted.lfWidth = 0;
    wanted.lfWeight = bold ? FW_SEMIBOLD : FW_NORMAL;
    if (const std::wstring name = ToWide(face); !name.empty() && name.size() < LF_FACESIZE)
        *std::copy(name.begin(), name.end(), wanted.lfFaceName) = L'\0';
    mFonts.push_back({points, bold, face, Hold(CreateFontIndirectW(&wanted), held.fonts)});
    return mFonts.back().font.get();
}

}  // namespace vantor
