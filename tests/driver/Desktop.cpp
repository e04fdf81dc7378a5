#include "tests/driver/Desktop.hpp"

#include <stdexcept>

#include "platform/win32/services/Windows.hpp"

namespace vantor::driver {

// Wine reads the size of a desktop from the registry once, when it first creates its window.
void EnterDesktop(const std::wstring& name, const std::wstring& size) {
    constexpr const wchar_t* kSizes = L"Software\\Wine\\Explorer\\Desktops";
    RegSetKeyValueW(HKEY_CURRENT_USER, kSizes, name.c_str(), REG_SZ, size.c_str(),
                    static_cast<DWORD>((size.size() + 1) * sizeof(wchar_t)));
    const HDESK desktop = CreateDesktopW(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    if (desktop == nullptr || SetThreadDesktop(desktop) == 0)
        throw std::runtime_error("no desktop for this run");
    GetDesktopWindow();  // creates the desktop window
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kSizes, name.c_str());
}

}  // namespace vantor::driver
