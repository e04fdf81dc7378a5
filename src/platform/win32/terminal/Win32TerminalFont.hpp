// The monospaced font of a terminal, in a typeface that has the letters of the code page.
#pragma once

#include <memory>
#include <type_traits>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

class Win32TerminalFont {
public:
    /// The typeface that `style` names, or a fallback when it is missing or incomplete.
    /// Raises RuntimeError 7 when the system cannot create the font.
    Win32TerminalFont(Win32Context& context, const ControlStyle& style);
    ~Win32TerminalFont();
    Win32TerminalFont(const Win32TerminalFont&) = delete;
    Win32TerminalFont& operator=(const Win32TerminalFont&) = delete;

    HFONT Face(bool bold) const { return bold ? mBold.get() : mPlain.get(); }
    /// Pixels of one character.
    int Width() const { return mWidth; }
    int Height() const { return mHeight; }

private:
    struct Deleter {
        void operator()(HFONT font) const { static_cast<void>(DeleteObject(font)); }
    };
    using Font = std::unique_ptr<std::remove_pointer_t<HFONT>, Deleter>;

    Win32Context& mContext;
    Font mPlain;
    Font mBold;
    int mWidth = 8;
    int mHeight = 16;
};

}  // namespace vantor
