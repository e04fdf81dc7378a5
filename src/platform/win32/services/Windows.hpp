// A reduced <windows.h>, and what every service here needs with it: text conversion and error
// numbers. No other file includes <windows.h>.
#pragma once

// Defined as 1 like in the C++ library and by the compiler, which may have defined them before.
#define NOMINMAX 1
#define UNICODE 1
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace vantor {

/// Text in `codePage` to UTF-16. Invalid UTF-8 becomes U+FFFD.
std::wstring ToWide(std::string_view text, UINT codePage = CP_UTF8);

/// UTF-16 to `codePage` (WideCharToMultiByte with these `flags` and `substitute`).
std::string FromWide(std::wstring_view wide, UINT codePage, DWORD flags, const char* substitute);

/// UTF-16 to UTF-8. Unpaired surrogates become U+FFFD.
inline std::string ToUtf8(std::wstring_view wide) {
    return FromWide(wide, CP_UTF8, 0, nullptr);
}

/// `text` as an argument for which null selects a default.
inline const wchar_t* OrNull(const std::wstring& text) {
    return text.empty() ? nullptr : text.c_str();
}

/// The absolute form of `path` (GetFullPathName); empty when there is none.
std::wstring FullPath(const std::wstring& path);

/// `path`, with slashes or backslashes, as a path for the system. Longer ones than it accepts by
/// default become absolute with the prefix for long paths.
std::wstring HostPath(std::string_view path);

/// The current folder of the process; empty when the system does not report it.
std::wstring CurrentFolder();

/// A copy of `size` bytes in movable memory, which the system can take over; null when out of
/// memory.
HGLOBAL GlobalCopy(const void* bytes, std::size_t size);

/// Raises the RuntimeError for a failed file operation: 53, 76, 70, 61, else 75.
[[noreturn]] void RaiseFileError(DWORD systemError);

/// Raises RuntimeError 7 (a window, a menu or a font could not be created), with the system's
/// message for `systemError` if there is one.
[[noreturn]] void RaiseNotMade(DWORD systemError);

/// Returns `handle`, the result of a system call; raises like `RaiseNotMade` when it is null.
template <typename Handle>
Handle Made(Handle handle) {
    if (handle == nullptr) RaiseNotMade(GetLastError());
    return handle;
}

}  // namespace vantor
