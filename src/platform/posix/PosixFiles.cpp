#include "platform/posix/PosixFiles.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <optional>

#include "platform/portable/WildCards.hpp"
#include "platform/posix/PosixHandle.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

constexpr mode_t kFileMode = 0666;    // further restricted by the umask
constexpr mode_t kFolderMode = 0777;  // likewise

std::string HostPath(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::string FolderOf(const std::string& hostPath) {
    const std::size_t slash = hostPath.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : hostPath.substr(0, slash);
}

std::optional<struct stat> StatusOf(const std::string& hostPath) {
    struct stat status {};
    if (stat(hostPath.c_str(), &status) != 0) return std::nullopt;
    return status;
}

[[noreturn]] void Raise(int systemError, const std::string& hostPath) {
    switch (systemError) {
        case ENOENT: {
            const auto folder = StatusOf(FolderOf(hostPath));
            const bool folderIsThere = folder && S_ISDIR(folder->st_mode);
            throw RuntimeError(folderIsThere ? ErrorNumber::FileNotFound
                                             : ErrorNumber::PathNotFound);
        }
        case ENOTDIR:
            throw RuntimeError(ErrorNumber::PathNotFound);
        case EACCES:
        case EPERM:
        case EROFS:
            throw RuntimeError(ErrorNumber::PermissionDenied);
        case ENOSPC:
        case EDQUOT:
            throw RuntimeError(ErrorNumber::DiskFull);
        default:
            throw RuntimeError(ErrorNumber::PathFileAccess);
    }
}

PosixHandle Open(const std::string& hostPath, int flags) {
    // Without O_NONBLOCK, opening a named pipe in place of a file would block for ever.
    const int allFlags = flags | O_CLOEXEC | O_NONBLOCK;
    PosixHandle file(Uninterrupted([&] { return open(hostPath.c_str(), allFlags, kFileMode); }));
    if (!file.IsOpen()) Raise(errno, hostPath);
    return file;
}

class PosixOutputFile : public OutputFile {
public:
    PosixOutputFile(const std::string& path, int flags)
        : mHostPath(HostPath(path)), mFile(Open(mHostPath, O_WRONLY | O_CREAT | flags)) {}

    void Write(std::string_view bytes) override {
        while (!bytes.empty()) {
            const ssize_t count =
                Uninterrupted([&] { return write(mFile.Get(), bytes.data(), bytes.size()); });
            if (count < 0) Raise(errno, mHostPath);
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }

private:
    std::string mHostPath;
    PosixHandle mFile;
};

}  // namespace

bool PosixFiles::Exists(const std::string& path) const {
    const auto status = StatusOf(HostPath(path));
    return status && S_ISREG(status->st_mode);
}

bool PosixFiles::SameFile(const std::string& path, const std::string& other) const {
    const auto one = StatusOf(HostPath(path));
    const auto two = StatusOf(HostPath(other));
    return one && two && one->st_dev == two->st_dev && one->st_ino == two->st_ino;
}

std::uint64_t PosixFiles::Size(const std::string& path) const {
    const std::string hostPath = HostPath(path);
    const auto status = StatusOf(hostPath);
    if (!status) Raise(errno, hostPath);
    if (!S_ISREG(status->st_mode)) throw RuntimeError(ErrorNumber::FileNotFound);
    return static_cast<std::uint64_t>(status->st_size);
}

std::string PosixFiles::ReadStart(const std::string& path, std::size_t most) const {
    const std::string hostPath = HostPath(path);
    const PosixHandle file = Open(hostPath, O_RDONLY);
    struct stat status {};
    if (fstat(file.Get(), &status) != 0) Raise(errno, hostPath);
    if (!S_ISREG(status.st_mode)) throw RuntimeError(ErrorNumber::PathFileAccess);
    // The size is only a hint: the file may grow meanwhile, and some system files (/proc) report 0.
    // One extra byte detects the end of file without another iteration.
    std::string bytes(std::min(static_cast<std::size_t>(status.st_size) + 1, most), '\0');
    std::size_t length = 0;
    while (length < most) {
        if (length == bytes.size())
            bytes.resize(std::min(length + std::max<std::size_t>(length, 4096), most));
        const ssize_t count = Uninterrupted(
            [&] { return read(file.Get(), bytes.data() + length, bytes.size() - length); });
        if (count < 0) Raise(errno, hostPath);
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

void PosixFiles::WriteAll(const std::string& path, std::string_view bytes) {
    PosixOutputFile(path, O_TRUNC).Write(bytes);
}

void PosixFiles::Append(const std::string& path, std::string_view bytes) {
    PosixOutputFile(path, O_APPEND).Write(bytes);
}

std::unique_ptr<OutputFile> PosixFiles::Create(const std::string& path) {
    return std::make_unique<PosixOutputFile>(path, O_TRUNC);
}

void PosixFiles::Delete(const std::string& path) {
    const std::string hostPath = HostPath(path);
    const auto status = StatusOf(hostPath);
    if (!status) Raise(errno, hostPath);
    if (!S_ISREG(status->st_mode)) throw RuntimeError(ErrorNumber::FileNotFound);
    if (unlink(hostPath.c_str()) != 0) Raise(errno, hostPath);
}

void PosixFiles::CreateFolders(const std::string& path) {
    const std::string hostPath = HostPath(path);
    for (std::size_t end = 0; end < hostPath.size();) {
        end = std::min(hostPath.find('/', end + 1), hostPath.size());
        const std::string folder = hostPath.substr(0, end);
        if (mkdir(folder.c_str(), kFolderMode) == 0) continue;
        const int systemError = errno;  // the check of the folder below overwrites it
        const auto status = StatusOf(folder);
        if (status && S_ISDIR(status->st_mode)) continue;
        Raise(systemError, folder);
    }
}

std::vector<std::string> PosixFiles::List(const std::string& folder, const std::string& pattern,
                                          ListFilter filter) const {
    std::vector<std::string> names;
    const std::string hostFolder = HostPath(folder.empty() ? "." : folder) + '/';
    struct Closer {
        void operator()(DIR* stream) const { static_cast<void>(closedir(stream)); }
    };
    const std::unique_ptr<DIR, Closer> stream(opendir(hostFolder.c_str()));
    if (!stream) return names;
    while (const dirent* entry = readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name.starts_with('.') && !filter.hidden) continue;
        if (!MatchesPattern(name, pattern)) continue;
        if (Exists(hostFolder + name)) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace vantor
