#include "platform/win32/Win32StringTable.hpp"

#include <cstddef>

#include "platform/win32/Windows.hpp"
#include "support/RuntimeError.hpp"

namespace vantor {

std::string Win32StringTable::LoadResString(std::int32_t id) const {
    // LoadStringW uses only the low 16 bits.
    constexpr std::int32_t kLastId = 0xFFFF;
    if (id < 0 || id > kLastId) throw RuntimeError(ErrorNumber::ResourceNotFound);
    // With size 0 the call returns a pointer to the resource itself, of any length.
    const wchar_t* text = nullptr;
    const int length = LoadStringW(GetModuleHandleW(nullptr), static_cast<UINT>(id),
                                   reinterpret_cast<wchar_t*>(&text), 0);
    if (length <= 0 || text == nullptr) throw RuntimeError(ErrorNumber::ResourceNotFound);
    return ToUtf8({text, static_cast<std::size_t>(length)});
}

}  // namespace vantor
