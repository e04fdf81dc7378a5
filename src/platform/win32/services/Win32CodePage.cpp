#include "platform/win32/services/Win32CodePage.hpp"

#include "platform/win32/services/Windows.hpp"

namespace vantor {

std::string Win32CodePage::ToAnsi(std::string_view utf8) const {
    const std::wstring wide = ToWide(utf8);
    // UTF-8 as ANSI code page can map everything; WideCharToMultiByte then rejects a substitute.
    const bool lacksNothing = GetACP() == CP_UTF8;
    const DWORD flags = lacksNothing ? 0 : WC_NO_BEST_FIT_CHARS;
    const char* const substitute = lacksNothing ? nullptr : "?";
    const int length = static_cast<int>(wide.size());
    const int needed =
        WideCharToMultiByte(CP_ACP, flags, wide.data(), length, nullptr, 0, substitute, nullptr);
    if (needed <= 0) return {};
    std::string ansi(static_cast<std::size_t>(needed), '\0');
    if (WideCharToMultiByte(CP_ACP, flags, wide.data(), length, ansi.data(), needed, substitute,
                            nullptr) != needed)
        return {};
    return ansi;
}

std::string Win32CodePage::FromAnsi(std::string_view ansi) const {
    const int length = static_cast<int>(ansi.size());
    const int needed = MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, nullptr, 0);
    if (needed <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    if (MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, wide.data(), needed) != needed)
        return {};
    return ToUtf8(wide);
}

}  // namespace vantor
