#include "platform/win32/services/Windows.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

// Win32 lengths are int; 2 GB strings do not occur here, and an overflowed length converts nothing.
std::wstring ToWide(std::string_view text, UINT codePage) {
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), needed);
    return wide;
}

std::string FromWide(std::wstring_view wide, UINT codePage, DWORD flags, const char* substitute) {
    const int length = static_cast<int>(wide.size());
    const auto convert = [&](char* into, int size) {
        return WideCharToMultiByte(codePage, flags, wide.data(), length, into, size, substitute,
                                   nullptr);
    };
    std::string text(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(text.data(), static_cast<int>(text.size()));
    return text;
}

std::wstring FullPath(const std::wstring& path) {
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    full.resize(length < full.size() ? length : 0);
    return full;
}

std::wstring HostPath(std::string_view path) {
    constexpr std::size_t kLongest = MAX_PATH - 13;  // of a folder: room for a short file name
    std::wstring wide = ToWide(path);
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    const std::wstring full = FullPath(wide);
    if (full.size() <= kLongest || full.starts_with(L"\\\\?\\")) return wide;
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

std::wstring CurrentFolder() {
    std::wstring path(GetCurrentDirectoryW(0, nullptr), L'\0');  // includes the NUL
    const DWORD length = GetCurrentDirectoryW(static_cast<DWORD>(path.size()), path.data());
    path.resize(length < path.size() ? length : 0);
    return path;
}

HGLOBAL GlobalCopy(const void* bytes, std::size_t size) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, std::max<std::size_t>(size, 1));
    if (memory == nullptr) return nullptr;
    std::memcpy(GlobalLock(memory), bytes, size);
    GlobalUnlock(memory);
    return memory;
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
