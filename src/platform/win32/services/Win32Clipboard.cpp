#include "platform/win32/services/Win32Clipboard.hpp"

#include <algorithm>

namespace vantor {
namespace {

/// The open clipboard; no other program can access it meanwhile.
class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND owner) : mOpen(OpenClipboard(owner) != 0) {}
    ~OpenedClipboard() {
        if (mOpen) static_cast<void>(CloseClipboard());
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    bool IsOpen() const { return mOpen; }

private:
    bool mOpen;
};

/// `text` with a terminating NUL, in memory that the clipboard can own; null when out of memory.
HGLOBAL MemoryWith(const std::wstring& text) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t));
    if (memory == nullptr) return nullptr;
    auto* const target = static_cast<wchar_t*>(GlobalLock(memory));
    *std::copy(text.begin(), text.end(), target) = L'\0';
    static_cast<void>(GlobalUnlock(memory));
    return memory;
}

}  // namespace

Win32Clipboard::Win32Clipboard()
    : mOwner(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                             GetModuleHandleW(nullptr), nullptr)) {}

Win32Clipboard::~Win32Clipboard() {
    if (mOwner != nullptr) static_cast<void>(DestroyWindow(mOwner));
}

std::string Win32Clipboard::Text() const {
    const OpenedClipboard clipboard(mOwner);
    const HANDLE memory = clipboard.IsOpen() ? GetClipboardData(CF_UNICODETEXT) : nullptr;
    const auto* const text =
        memory == nullptr ? nullptr : static_cast<const wchar_t*>(GlobalLock(memory));
    if (text == nullptr) return {};
    // Not every program terminates its text with a NUL.
    const std::wstring_view all(text, GlobalSize(memory) / sizeof(wchar_t));
    std::string result = ToUtf8(all.substr(0, all.find(L'\0')));
    static_cast<void>(GlobalUnlock(memory));
    return result;
}

void Win32Clipboard::Text(const std::string& text) {
    const OpenedClipboard clipboard(mOwner);
    if (!clipboard.IsOpen()) return;
    const HGLOBAL memory = MemoryWith(ToWide(text));
    if (memory == nullptr || EmptyClipboard() == 0 ||
        SetClipboardData(CF_UNICODETEXT, memory) == nullptr)
        static_cast<void>(GlobalFree(memory));  // null is allowed
}

}  // namespace vantor
