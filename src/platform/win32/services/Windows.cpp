#include "platform/win32/services/Windows.hpp"

#include <array>
#include <cstddef>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

// Win32 lengths are int; 2 GB strings do not occur here, and an overflowed length converts nothing.
std::wstring ToWide(std::string_view utf8) {
    const int length = static_cast<int>(utf8.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    if (needed <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    if (MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, wide.data(), needed) != needed)
        return {};
    return wide;
}

std::string ToUtf8(std::wstring_view wide) {
    const int length = static_cast<int>(wide.size());
    const int needed =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return {};
    std::string utf8(static_cast<std::size_t>(needed), '\0');
    if (WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, utf8.data(), needed, nullptr,
                            nullptr) != needed)
        return {};
    return utf8;
}

void RaiseFileError(DWORD systemError) {
    switch (systemError) {
        case ERROR_FILE_NOT_FOUND:
            throw RuntimeError(ErrorNumber::FileNotFound);
        case ERROR_PATH_NOT_FOUND:
        case ERROR_DIRECTORY:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_PATHNAME:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
            throw RuntimeError(ErrorNumber::PathNotFound);
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_WRITE_PROTECT:
        case ERROR_NETWORK_ACCESS_DENIED:
            throw RuntimeError(ErrorNumber::PermissionDenied);
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            throw RuntimeError(ErrorNumber::DiskFull);
        default:
            throw RuntimeError(ErrorNumber::PathFileAccess);
    }
}

void RaiseNotMade(DWORD systemError) {
    std::array<wchar_t, 512> words{};
    // Graphics calls fail without an error number. The mask keeps the text on one line.
    const DWORD length =
        systemError == 0
            ? 0
            : FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                                 FORMAT_MESSAGE_MAX_WIDTH_MASK,
                             nullptr, systemError, 0, words.data(),
                             static_cast<DWORD>(words.size()), nullptr);
    std::string text = ToUtf8({words.data(), static_cast<std::size_t>(length)});
    text.resize(text.find_last_not_of(' ') + 1);
    throw RuntimeError(ErrorNumber::OutOfMemory, text);
}

}  // namespace vantor
