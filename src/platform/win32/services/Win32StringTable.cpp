// The program's string resources. Windows selects the language at each call.
#include <cstddef>

#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"

namespace vantor {
namespace {

class Win32StringTable : public StringTable {
public:
    std::string LoadResString(std::int32_t id) const override {
        // LoadStringW uses only the low 16 bits.
        constexpr std::int32_t kLastId = 0xFFFF;
        if (id < 0 || id > kLastId) throw MissingText(id);
        // With a size of 0 the call gives the resource itself, however long it is.
        const wchar_t* text = nullptr;
        const int length = LoadStringW(GetModuleHandleW(nullptr), static_cast<UINT>(id),
                                       reinterpret_cast<wchar_t*>(&text), 0);
        if (length <= 0 || text == nullptr) throw MissingText(id);
        return ToUtf8({text, static_cast<std::size_t>(length)});
    }
};

}  // namespace

std::unique_ptr<StringTable> MakeWin32StringTable() {
    return std::make_unique<Win32StringTable>();
}

}  // namespace vantor
