// The monospaced font of a terminal, in a typeface that has the letters of the code page.
#pragma once

#include "controls/Form.hpp"
#include "platform/win32/Win32Stage.hpp"

namespace vantor {

class Win32TerminalFont {
public:
    /// The typeface that `style` names, or another when it is missing or incomplete.
    Win32TerminalFont(Win32Stage& stage, const ControlStyle& style);
    ~Win32TerminalFont();
    Win32TerminalFont(const Win32TerminalFont&) = delete;
    Win32TerminalFont& operator=(const Win32TerminalFont&) = delete;

    HFONT Face(bool bold) const { return bold ? mBold : mPlain; }
    /// Size of one character in pixels.
    int Width() const { return mWidth; }
    int Height() const { return mHeight; }

private:
    Win32Stage& mStage;
    HFONT mPlain = nullptr;
    HFONT mBold = nullptr;
    int mWidth = 8;
    int mHeight = 16;
};

}  // namespace vantor
