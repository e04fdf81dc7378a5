// The Windows clipboard, text only.
#pragma once

#include "platform/Clipboard.hpp"
#include "platform/win32/services/Windows.hpp"

namespace vantor {

class Win32Clipboard : public Clipboard {
public:
    Win32Clipboard();
    ~Win32Clipboard() override;
    Win32Clipboard(const Win32Clipboard&) = delete;
    Win32Clipboard& operator=(const Win32Clipboard&) = delete;

    std::string Text() const override;
    void Text(const std::string& text) override;

private:
    HWND mOwner;  // the clipboard accepts text only from a window
};

}  // namespace vantor
