// What all windows share: DPI scaling, fonts, the pointer, and counts of the system objects that
// the peers hold, for leak detection.
#pragma once

#include <map>
#include <string>
#include <tuple>

#include "controls/Control.hpp"
#include "platform/win32/drawing/Win32SpokenNames.hpp"
#include "platform/win32/services/Windows.hpp"

namespace vantor {

/// System objects that the peers hold now.
struct HeldObjects {
    int windows = 0;
    int menus = 0;
    int fonts = 0;
};

class Win32Context {
public:
    Win32Context();
    ~Win32Context();
    Win32Context(const Win32Context&) = delete;
    Win32Context& operator=(const Win32Context&) = delete;

    HINSTANCE Instance() const { return mInstance; }

    /// Twips to pixels and back at the system DPI.
    int ToPixels(float twips) const;
    float ToTwips(int pixels) const;
    RECT ToPixels(const Place& place) const;
    Place ToTwips(const RECT& pixels) const;

    /// The monitor that contains `place` (screen pixels) or is nearest to it.
    static MONITORINFO MonitorAt(const RECT& place);

    /// The system's message font in another size, and in the typeface `face` if given; cached for
    /// all windows. Raises RuntimeError 7 when the system cannot create it.
    HFONT Font(float points, bool bold, const std::string& face = {});

    HeldObjects held;
    Win32SpokenNames spokenNames;
    HCURSOR cursor = nullptr;   ///< the pointer of all windows; null: each window's own
    std::wstring reasonToStay;  ///< reason that blocks a shutdown; empty: none

private:
    HINSTANCE mInstance;
    int mDpi = 96;
    std::map<std::tuple<int, bool, std::string>, HFONT> mFonts;  // by tenths of points, bold, face
};

}  // namespace vantor
