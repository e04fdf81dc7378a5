// Files to which several processes append, on Windows.
#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"

namespace vantor {
namespace {

/// Opens the file and locks one byte far behind its end, which hinders no reader. Closing it
/// releases the lock.
Win32Handle Locked(const std::string& path) {
    Win32Handle file(CreateFileW(HostPath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) RaiseFileError(GetLastError());
    if (GetFileType(file.Get()) != FILE_TYPE_DISK) RaiseFileError(ERROR_INVALID_PARAMETER);
    OVERLAPPED place{};
    place.OffsetHigh = 0x7fffffff;
    if (LockFileEx(file.Get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place) == 0)
        RaiseFileError(GetLastError());
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
