// Accessible names and values for windows whose text does not provide them.
#pragma once

#include <string>

#include "platform/win32/services/Windows.hpp"

struct IAccPropServices;

namespace vantor {

/// Used from one thread, on which it keeps COM initialised.
class Win32SpokenTexts {
public:
    Win32SpokenTexts();
    ~Win32SpokenTexts();
    Win32SpokenTexts(const Win32SpokenTexts&) = delete;
    Win32SpokenTexts& operator=(const Win32SpokenTexts&) = delete;

    /// Sets the accessible name of `window` (IAccPropServices::SetHwndPropStr); call `Forget`
    /// before it is destroyed. Without the service, screen readers use the window text.
    void SetName(HWND window, const std::wstring& name);
    /// Sets the accessible value likewise: the text of a window whose name is another.
    void SetValue(HWND window, const std::wstring& value);
    void Forget(HWND window);

private:
    void SetProperty(HWND window, const GUID& property, const std::wstring& text);

    bool mPrepared;
    IAccPropServices* mService = nullptr;  // created with the first text
};

}  // namespace vantor
