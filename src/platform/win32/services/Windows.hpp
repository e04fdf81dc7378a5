// A reduced <windows.h>, and what every service here needs with it: text conversion and error
// numbers. No other file includes <windows.h>.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef UNICODE
#define UNICODE
#endif
#ifndef _UNICODE
#define _UNICODE
#endif
#include <windows.h>

#include <string>
#include <string_view>

namespace vantor {

/// UTF-8 to UTF-16. Invalid UTF-8 becomes U+FFFD.
std::wstring ToWide(std::string_view utf8);

/// UTF-16 to UTF-8. Unpaired surrogates become U+FFFD.
std::string ToUtf8(std::wstring_view wide);

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
