#include "platform/win32/terminal/Win32TerminalFont.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace vantor {
namespace {

/// Letters of both languages, and symbols that an indicator displays.
constexpr std::wstring_view kSample = L"Az09\x00c1\x00d1\x00e1\x00e9\x00ed\x00f1\x00f3\x00fa\x00b0";

HFONT Make(const wchar_t* face, int height, bool bold = false, bool italic = false,
           DWORD quality = DEFAULT_QUALITY) {
    // The one OEM face is only found with its character set.
    const bool isTerminal = std::wstring_view(face) == L"Terminal";
    return CreateFontW(-height, 0, 0, 0, bold ? FW_BOLD : FW_NORMAL, italic ? TRUE : FALSE, FALSE,
                       FALSE, isTerminal ? OEM_CHARSET : DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, quality, DWORD{FIXED_PITCH} | DWORD{FF_MODERN}, face);
}

/// True when the selected typeface is the requested one, monospaced, and has all letters.
bool IsWhole(HDC target, const wchar_t* face) {
    std::array<wchar_t, LF_FACESIZE> given{};
    TEXTMETRICW metrics{};
    std::array<WORD, kSample.size()> glyphs{};
    if (GetTextFaceW(target, LF_FACESIZE, given.data()) == 0 ||
        lstrcmpiW(given.data(), face) != 0 || GetTextMetricsW(target, &metrics) == 0 ||
        GetGlyphIndicesW(target, kSample.data(), static_cast<int>(kSample.size()), glyphs.data(),
                         GGI_MARK_NONEXISTING_GLYPHS) == GDI_ERROR)
        return false;
    // Despite its name, the flag is set for faces that are not monospaced.
    const bool oneWidth = (metrics.tmPitchAndFamily & TMPF_FIXED_PITCH) == 0;
    constexpr WORD kMissing = 0xffff;
    constexpr WORD kMissingInBitmaps = 0x1f;
    return oneWidth && std::ranges::none_of(glyphs, [](WORD glyph) {
               return glyph == kMissing || glyph == kMissingInBitmaps;
           });
}

/// `wanted` or the first suitable fallback; without one the system chooses.
const wchar_t* ChosenFace(HDC target, const wchar_t* wanted, int height) {
    for (const wchar_t* const face : {wanted, L"Consolas", L"Lucida Console", L"Courier New",
                                      L"Liberation Mono", L"DejaVu Sans Mono"}) {
        const Win32Object<HFONT> font(Make(face, height));
        const Win32Selected selected(target, font.get());
        if (IsWhole(target, face)) return face;
    }
    return L"";
}

}  // namespace

Win32TerminalFont::Win32TerminalFont(Win32Context& context, const ControlStyle& style, int wanted)
    : points(wanted) {
    constexpr float kTwipsPerPoint = 20;
    const float size = wanted > 0 ? static_cast<float>(wanted) : style.points;
    const int pixels = context.ToPixels(size * kTwipsPerPoint);
    const Win32Object<HDC> target(Made(CreateCompatibleDC(nullptr)));
    const std::wstring named = ToWide(style.face);
    const wchar_t* const face = ChosenFace(target.get(), named.c_str(), pixels);
    for (std::size_t look = 0; look < looks.size(); ++look)
        looks[look] =
            Hold(Make(face, pixels, (look & 1) != 0, (look & 2) != 0), context.held.fonts);
    // Anti-aliasing makes letters of this size too pale to read.
    small =
        Hold(Make(face, pixels * 7 / 10, false, false, NONANTIALIASED_QUALITY), context.held.fonts);
    const Win32Selected selected(target.get(), Look(false, false));
    TEXTMETRICW metrics{};
    if (GetTextMetricsW(target.get(), &metrics) == 0) return;
    width = std::max<int>(metrics.tmAveCharWidth, 1);
    height = std::max<int>(metrics.tmHeight, 1);
}

}  // namespace vantor
