// The system's own header, kept small, and what every service here needs with it: text conversion
// and error numbers. The only place that includes <windows.h>.
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

/// Raises RuntimeError 7 in the system's own words, where it has some for `systemError`: a window,
/// a menu or a font could not be made.
[[noreturn]] void RaiseNotMade(DWORD systemError);

/// `handle`, as a call of the system has returned it; raises as `RaiseNotMade` when it is null.
template <typename Handle>
Handle Made(Handle handle) {
    if (handle == nullptr) RaiseNotMade(GetLastError());
    return handle;
}

}  // namespace vantor
