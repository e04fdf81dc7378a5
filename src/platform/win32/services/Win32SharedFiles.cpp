// Files to which several processes append, on Windows.
#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"

namespace vantor {
namespace {

/// Locks one byte far behind the end of the file, which hinders no reader. Waits for some seconds
/// while another process has it locked. False on failure.
bool Lock(HANDLE file) {
    constexpr int kTries = 1000;
    constexpr DWORD kPauseMs = 5;
    OVERLAPPED place{};
    place.OffsetHigh = 0x7fffffff;
    // At once: a lock that is waited for would hang this process behind one that is stopped.
    for (int i = 0; i < kTries; ++i) {
        if (LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                       &place) != 0)
            return true;
        if (GetLastError() != ERROR_LOCK_VIOLATION) return false;
        Sleep(kPauseMs);
    }
    SetLastError(ERROR_LOCK_VIOLATION);
    return false;
}

/// Opens and locks the file; closing it releases the lock.
Win32Handle Locked(const std::string& path) {
    Win32Handle file(CreateFileW(HostPath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) RaiseFileError(GetLastError());
    if (GetFileType(file.Get()) != FILE_TYPE_DISK) RaiseFileError(ERROR_INVALID_PARAMETER);
    if (!Lock(file.Get())) RaiseFileError(GetLastError());
    return file;
}

bool EndsWithin(HANDLE file, LARGE_INTEGER size) {
    LARGE_INTEGER at = size;
    --at.QuadPart;
    char last = '\n';
    DWORD count = 0;
    return size.QuadPart > 0 && SetFilePointerEx(file, at, nullptr, FILE_BEGIN) != 0 &&
           ReadFile(file, &last, 1, &count, nullptr) != 0 && count == 1 && last != '\n';
}

class Win32SharedFiles : public SharedFiles {
public:
    void Append(const std::string& path, std::string_view header,
                std::string_view record) override {
        const Win32Handle file = Locked(path);
        LARGE_INTEGER size{};
        if (GetFileSizeEx(file.Get(), &size) == 0) RaiseFileError(GetLastError());
        std::string bytes;
        if (size.QuadPart == 0) bytes = header;
        if (!record.empty() && EndsWithin(file.Get(), size)) bytes = "\r\n";
        bytes += record;
        DWORD count = 0;
        if (SetFilePointerEx(file.Get(), size, nullptr, FILE_BEGIN) != 0 &&
            WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count,
                      nullptr) != 0 &&
            count == bytes.size() && FlushFileBuffers(file.Get()) != 0)
            return;
        const DWORD systemError = GetLastError();
        if (SetFilePointerEx(file.Get(), size, nullptr, FILE_BEGIN) == 0 ||
            SetEndOfFile(file.Get()) == 0)
            RaiseFileError(GetLastError());  // part of it stays
        RaiseFileError(systemError);
    }
};

}  // namespace

std::unique_ptr<SharedFiles> MakeWin32SharedFiles() {
    return std::make_unique<Win32SharedFiles>();
}

}  // namespace vantor
