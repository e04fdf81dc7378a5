// What all windows share: DPI scaling, fonts, the pointer, and the list of the form windows.
#pragma once

#include <string>
#include <vector>

#include "controls/Control.hpp"
#include "platform/win32/drawing/Win32Objects.hpp"
#include "platform/win32/drawing/Win32SpokenTexts.hpp"

namespace vantor {

class Win32Context {
public:
    Win32Context();

    HINSTANCE Instance() const { return mInstance; }

    /// Twips to pixels and back at the system DPI.
    int ToPixels(float twips) const;
    float ToTwips(int pixels) const;
    RECT ToPixels(const Place& place) const;
    Place ToTwips(const RECT& pixels) const;

    /// The monitor that contains `place` (screen pixels) or is nearest to it.
    static MONITORINFO MonitorAt(const RECT& place);
    /// `place`, moved to the middle of its monitor's work area, or to its corner when too large.
    static RECT Centred(RECT place);

    /// The outer place of a window from the place of its form, and back. The designs of forms
    /// assume the default title bar: a higher one makes the window higher.
    RECT WindowPlace(const Place& form) const;
    Place FormPlace(RECT window) const;

    /// The system's message font in another size, and in the typeface `face` if given; cached for
    /// all windows. Raises RuntimeError 7 when the system cannot create it.
    HFONT Font(float points, bool bold, const std::string& face = {});

    HeldObjects held;
    std::vector<HWND> formWindows;  ///< in creation order; the first is the main window
    Win32SpokenTexts spokenTexts;
    HCURSOR cursor = nullptr;   ///< the pointer of all windows; null: each window's own
    std::wstring reasonToStay;  ///< reason that blocks a shutdown; empty: none

private:
    struct CachedFont {
        float points;
        bool bold;
        std::string face;
        Win32Object<HFONT> font;
    };

    /// The pixels by which the user's title bars are higher than the default.
    int CaptionExcess() const;

    HINSTANCE mInstance;
    int mDpi = 96;
    std::vector<CachedFont> mFonts;
};

}  // namespace vantor
