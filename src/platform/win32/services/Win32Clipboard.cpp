// The clipboard, text only.
#include "platform/win32/services/Win32HiddenWindow.hpp"
#include "platform/win32/services/Win32Services.hpp"

namespace vantor {
namespace {

class Win32Clipboard : public Clipboard {
public:
    std::string Text() const override {
        if (OpenClipboard(mOwner.get()) == 0) return {};
        const Finally close([] { CloseClipboard(); });
        const HANDLE memory = GetClipboardData(CF_UNICODETEXT);
        const auto* const text =
            memory == nullptr ? nullptr : static_cast<const wchar_t*>(GlobalLock(memory));
        if (text == nullptr) return {};
        // Not every program terminates its text with a NUL.
        const std::wstring_view all(text, GlobalSize(memory) / sizeof(wchar_t));
        std::string result = ToUtf8(all.substr(0, all.find(L'\0')));
        GlobalUnlock(memory);
        return result;
    }

    void Text(const std::string& text) override {
        if (OpenClipboard(mOwner.get()) == 0) return;
        const Finally close([] { CloseClipboard(); });
        const std::wstring wide = ToWide(text);
        const HGLOBAL memory = GlobalCopy(wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
        if (memory == nullptr || EmptyClipboard() == 0 ||
            SetClipboardData(CF_UNICODETEXT, memory) == nullptr)
            GlobalFree(memory);  // null is allowed
    }

private:
    // The clipboard accepts text only from a window.
    OwnedWindow mOwner{CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                       GetModuleHandleW(nullptr), nullptr)};
};

}  // namespace

std::unique_ptr<Clipboard> MakeWin32Clipboard() {
    return std::make_unique<Win32Clipboard>();
}

}  // namespace vantor
