// Files by wide paths. Patterns are matched by the portable code: FindFirstFile would also match
// the short (8.3) names.
#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "platform/portable/WildCards.hpp"
#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// "NUL" and similar names are devices in every folder; only Windows knows all of them.
bool IsDevice(const std::wstring& hostPath) {
    return FullPath(hostPath).starts_with(L"\\\\.\\");
}

/// The attributes with which a file can be created over `hostPath`: the system refuses to replace a
/// hidden or system file by one that is neither.
DWORD AttributesToReplace(const std::wstring& hostPath) {
    constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    const DWORD present = GetFileAttributesW(hostPath.c_str());
    return present == INVALID_FILE_ATTRIBUTES ? 0 : present & kKept;
}

struct Status {
    bool isPlainFile = false;
    std::uint64_t size = 0;
};

/// Empty when there is no such entry; GetLastError then has the reason.
std::optional<Status> StatusOf(const std::wstring& hostPath) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(hostPath.c_str(), GetFileExInfoStandard, &data) == 0)
        return std::nullopt;
    const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return Status{!isFolder && !IsDevice(hostPath),
                  std::uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow};
}

std::uint64_t SizeOf(const std::wstring& hostPath) {
    const auto status = StatusOf(hostPath);
    if (!status) RaiseFileError(GetLastError());
    if (!status->isPlainFile) throw RuntimeError(ErrorNumber::FileNotFound);
    return status->size;
}

Win32Handle Open(const std::wstring& hostPath, DWORD access, DWORD share, DWORD disposition) {
    const DWORD attributes = disposition == CREATE_ALWAYS ? AttributesToReplace(hostPath) : 0;
    Win32Handle file(CreateFileW(hostPath.c_str(), access, share, nullptr, disposition,
                                 attributes | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file.IsOpen()) RaiseFileError(GetLastError());
    // Reading a device such as COM1 would block for ever.
    if (GetFileType(file.Get()) != FILE_TYPE_DISK) throw RuntimeError(ErrorNumber::PathFileAccess);
    return file;
}

/// Volume and index identify a file as long as it is open.
struct Identity {
    Win32Handle file;
    BY_HANDLE_FILE_INFORMATION information{};
};

std::optional<Identity> IdentityOf(const std::wstring& hostPath) {
    // Opened without access rights, so that a file locked by another program works too.
    Identity identity{Win32Handle(CreateFileW(hostPath.c_str(), 0, kShareAll, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr))};
    if (!identity.file.IsOpen() ||
        GetFileInformationByHandle(identity.file.Get(), &identity.information) == 0)
        return std::nullopt;
    return identity;
}

/// As many bytes as one system call accepts.
DWORD Portion(std::size_t bytes) {
    constexpr std::size_t kMost = 1u << 30;
    return static_cast<DWORD>(std::min(bytes, kMost));
}

class Win32OutputFile : public OutputFile {
public:
    explicit Win32OutputFile(Win32Handle file) : mFile(std::move(file)) {}

    void Write(std::string_view bytes) override {
        while (!bytes.empty()) {
            DWORD count = 0;
            if (WriteFile(mFile.Get(), bytes.data(), Portion(bytes.size()), &count, nullptr) == 0)
                RaiseFileError(GetLastError());
            bytes.remove_prefix(count);
        }
    }

private:
    Win32Handle mFile;
};

bool PassesFilter(DWORD attributes, ListFilter filter) {
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return false;
    if ((attributes & FILE_ATTRIBUTE_HIDDEN) != 0 && !filter.hidden) return false;
    return (attributes & FILE_ATTRIBUTE_SYSTEM) == 0 || filter.system;
}

/// "C:" and "\\machine\share" exist or not; they cannot be created.
bool IsRoot(std::wstring_view folder) {
    if (folder.empty() || folder.ends_with(L':')) return true;
    if (!folder.starts_with(L"\\\\")) return false;
    return std::count(folder.begin(), folder.end(), L'\\') <= 3;
}

class Win32Files : public Files {
public:
    bool Exists(const std::string& path) const override {
        const auto status = StatusOf(HostPath(path));
        return status && status->isPlainFile;
    }

    bool SameFile(const std::string& path, const std::string& other) const override {
        const auto one = IdentityOf(HostPath(path));
        const auto two = IdentityOf(HostPath(other));
        return one && two &&
               one->information.dwVolumeSerialNumber == two->information.dwVolumeSerialNumber &&
               one->information.nFileIndexHigh == two->information.nFileIndexHigh &&
               one->information.nFileIndexLow == two->information.nFileIndexLow;
    }

    std::uint64_t Size(const std::string& path) const override { return SizeOf(HostPath(path)); }

    std::string ReadStart(const std::string& path, std::size_t most) const override {
        const Win32Handle file = Open(HostPath(path), GENERIC_READ, kShareAll, OPEN_EXISTING);
        LARGE_INTEGER size{};
        if (GetFileSizeEx(file.Get(), &size) == 0) RaiseFileError(GetLastError());
        // The size is only a hint: the file may grow meanwhile. One extra byte detects the end of
        // file without another iteration.
        std::string bytes(std::min(static_cast<std::size_t>(size.QuadPart) + 1, most), '\0');
        std::size_t length = 0;
        while (length < most) {
            if (length == bytes.size())
                bytes.resize(std::min(length + std::max<std::size_t>(length, 4096), most));
            DWORD count = 0;
            if (ReadFile(file.Get(), bytes.data() + length, Portion(bytes.size() - length), &count,
                         nullptr) == 0)
                RaiseFileError(GetLastError());
            if (count == 0) break;
            length += count;
        }
        bytes.resize(length);
        return bytes;
    }

    void WriteAll(const std::string& path, std::string_view bytes) override {
        Create(path)->Write(bytes);
    }

    void Append(const std::string& path, std::string_view bytes) override {
        Win32OutputFile(
            Open(HostPath(path), FILE_APPEND_DATA | SYNCHRONIZE, kShareAll, OPEN_ALWAYS))
            .Write(bytes);
    }

    std::unique_ptr<OutputFile> Create(const std::string& path) override {
        return std::make_unique<Win32OutputFile>(
            Open(HostPath(path), GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS));
    }

    void Delete(const std::string& path) override {
        const std::wstring hostPath = HostPath(path);
        SizeOf(hostPath);  // raises when it is no plain file
        if (DeleteFileW(hostPath.c_str()) == 0) RaiseFileError(GetLastError());
    }

    void CreateFolders(const std::string& path) override {
        const std::size_t last = path.size();
        for (std::size_t end = 0; end < last;) {
            end = std::min(path.find_first_of("/\\", end + 1), last);
            const std::wstring folder = HostPath(std::string_view(path).substr(0, end));
            if (IsRoot(folder) || CreateDirectoryW(folder.c_str(), nullptr) != 0) continue;
            const DWORD systemError = GetLastError();  // overwritten by the check below
            const DWORD attributes = GetFileAttributesW(folder.c_str());
            if (attributes != INVALID_FILE_ATTRIBUTES &&
                (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
                continue;
            RaiseFileError(systemError);
        }
    }

    std::vector<std::string> List(const std::string& folder, const std::string& pattern,
                                  ListFilter filter) const override {
        std::vector<std::string> names;
        WIN32_FIND_DATAW entry{};
        const std::wstring all = HostPath((folder.empty() ? "." : folder) + "\\*");
        const HANDLE first = FindFirstFileW(all.c_str(), &entry);
        if (first == INVALID_HANDLE_VALUE) return names;
        const Owned<HANDLE, FindClose> search(first);
        do {
            if (!PassesFilter(entry.dwFileAttributes, filter)) continue;
            std::string name = ToUtf8(entry.cFileName);
            if (MatchesPattern(name, pattern)) names.push_back(std::move(name));
        } while (FindNextFileW(search.get(), &entry) != 0);
        std::sort(names.begin(), names.end());
        return names;
    }
};

}  // namespace

std::unique_ptr<Files> MakeWin32Files() {
    return std::make_unique<Win32Files>();
}

}  // namespace vantor
