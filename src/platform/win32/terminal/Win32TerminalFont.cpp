#include "platform/win32/terminal/Win32TerminalFont.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {
namespace {

constexpr std::array kFallbacks = {L"Consolas", L"Lucida Console", L"Courier New",
                                   L"Liberation Mono", L"DejaVu Sans Mono"};

/// Letters of both languages, and symbols that an indicator displays.
constexpr std::wstring_view kSample = L"Az09\x00c1\x00d1\x00e1\x00e9\x00ed\x00f1\x00f3\x00fa\x00b0";

HFONT Make(const std::wstring& face, int height, bool bold) {
    // The one OEM face is only found with its character set.
    const bool isTerminal = face == L"Terminal";
    return CreateFontW(-height, 0, 0, 0, bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE,
                       isTerminal ? OEM_CHARSET : DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DWORD{FIXED_PITCH} | DWORD{FF_MODERN},
                       face.c_str());
}

/// True when the selected typeface is the requested one, monospaced, and has all letters.
bool IsWhole(HDC target, const std::wstring& face) {
    std::array<wchar_t, LF_FACESIZE> given{};
    TEXTMETRICW metrics{};
    std::array<WORD, kSample.size()> glyphs{};
    if (GetTextFaceW(target, LF_FACESIZE, given.data()) == 0 ||
        lstrcmpiW(given.data(), face.c_str()) != 0 || GetTextMetricsW(target, &metrics) == 0 ||
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
std::wstring ChosenFace(HDC target, const std::wstring& wanted, int height) {
    std::vector<std::wstring> faces = {wanted};
    faces.insert(faces.end(), kFallbacks.begin(), kFallbacks.end());
    for (const std::wstring& face : faces) {
        const HFONT font = Make(face, height, false);
        const HGDIOBJ before = SelectObject(target, font);
        const bool whole = IsWhole(target, face);
        static_cast<void>(SelectObject(target, before));
        static_cast<void>(DeleteObject(font));
        if (whole) return face;
    }
    return {};
}

}  // namespace

Win32TerminalFont::Win32TerminalFont(Win32Context& context, const ControlStyle& style)
    : mContext(context) {
    constexpr float kTwipsPerPoint = 20;
    const int height = context.ToPixels(style.points * kTwipsPerPoint);
    const HDC target = Made(CreateCompatibleDC(nullptr));
    const HGDIOBJ before = GetCurrentObject(target, OBJ_FONT);
    const std::wstring face = ChosenFace(target, ToWide(style.face), height);
    mPlain.reset(Make(face, height, false));
    mBold.reset(Make(face, height, true));
    static_cast<void>(SelectObject(target, mPlain.get()));
    TEXTMETRICW metrics{};
    if (GetTextMetricsW(target, &metrics) != 0) {
        mWidth = std::max<int>(metrics.tmAveCharWidth, 1);
        mHeight = std::max<int>(metrics.tmHeight, 1);
    }
    static_cast<void>(SelectObject(target, before));
    static_cast<void>(DeleteDC(target));
    if (mPlain == nullptr || mBold == nullptr) RaiseNotMade(GetLastError());
    mContext.held.fonts += 2;
}

Win32TerminalFont::~Win32TerminalFont() {
    mContext.held.fonts -= 2;
}

}  // namespace vantor
