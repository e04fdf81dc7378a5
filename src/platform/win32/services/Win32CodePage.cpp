// The ANSI code page of the system, whichever it is. No best-fit mapping: a stored text would read
// back as a different one.
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"

namespace vantor {
namespace {

class Win32CodePage : public CodePage {
public:
    std::string ToAnsi(std::string_view utf8) const override {
        // UTF-8 as ANSI code page can map everything; WideCharToMultiByte then rejects a
        // substitute.
        if (GetACP() == CP_UTF8) return FromWide(ToWide(utf8), CP_ACP, 0, nullptr);
        return FromWide(ToWide(utf8), CP_ACP, WC_NO_BEST_FIT_CHARS, "?");
    }

    std::string FromAnsi(std::string_view ansi) const override {
        return ToUtf8(ToWide(ansi, CP_ACP));
    }
};

}  // namespace

std::unique_ptr<CodePage> MakeWin32CodePage() {
    return std::make_unique<Win32CodePage>();
}

}  // namespace vantor
