// Files on POSIX.
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/portable/WildCards.hpp"
#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixServices.hpp"
#include "support/errors/RuntimeError.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

constexpr mode_t kFileMode = 0666;    // further restricted by the umask
constexpr mode_t kFolderMode = 0777;  // likewise

std::string HostPath(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::optional<struct stat> StatusOf(const std::string& hostPath) {
    struct stat status {};
    if (stat(hostPath.c_str(), &status) != 0) return std::nullopt;
    return status;
}

[[noreturn]] void Raise(int systemError, const std::string& hostPath) {
    if (systemError == ENOENT && StatusOf(std::string(FolderOf(hostPath)) + '.'))
        throw RuntimeError(ErrorNumber::FileNotFound);
    RaiseFileError(systemError);
}

class PosixOutputFile : public OutputFile {
public:
    PosixOutputFile(const std::string& path, int flags) : mHostPath(HostPath(path)) {
        // Without O_NONBLOCK, opening a named pipe in place of a file would block for ever.
        flags |= O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK;
        mFile =
            PosixHandle(Uninterrupted([&] { return open(mHostPath.c_str(), flags, kFileMode); }));
        if (!mFile.IsOpen()) Raise(errno, mHostPath);
    }

    void Write(std::string_view bytes) override {
        if (!WriteAll(mFile.Get(), bytes)) Raise(errno, mHostPath);
    }

private:
    std::string mHostPath;
    PosixHandle mFile;
};

class PosixFiles : public Files {
public:
    bool Exists(const std::string& path) const override {
        const auto status = StatusOf(HostPath(path));
        return status && S_ISREG(status->st_mode);
    }

    bool SameFile(const std::string& path, const std::string& other) const override {
        const auto one = StatusOf(HostPath(path));
        const auto two = StatusOf(HostPath(other));
        return one && two && one->st_dev == two->st_dev && one->st_ino == two->st_ino;
    }

    std::uint64_t Size(const std::string& path) const override {
        const std::string hostPath = HostPath(path);
        const auto status = StatusOf(hostPath);
        if (!status) Raise(errno, hostPath);
        if (!S_ISREG(status->st_mode)) throw RuntimeError(ErrorNumber::FileNotFound);
        return static_cast<std::uint64_t>(status->st_size);
    }

    std::string ReadStart(const std::string& path, std::size_t most) const override {
        const std::string hostPath = HostPath(path);
        FileContents contents = ReadRegularFile(hostPath, most);
        if (contents.systemError != 0) Raise(contents.systemError, hostPath);
        return std::move(contents.bytes);
    }

    void WriteAll(const std::string& path, std::string_view bytes) override {
        PosixOutputFile(path, O_TRUNC).Write(bytes);
    }

    void Append(const std::string& path, std::string_view bytes) override {
        PosixOutputFile(path, O_APPEND).Write(bytes);
    }

    std::unique_ptr<OutputFile> Create(const std::string& path) override {
        return std::make_unique<PosixOutputFile>(path, O_TRUNC);
    }

    void Delete(const std::string& path) override {
        Size(path);  // raises the error of what is not a regular file
        const std::string hostPath = HostPath(path);
        if (unlink(hostPath.c_str()) != 0) Raise(errno, hostPath);
    }

    void CreateFolders(const std::string& path) override {
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

    std::vector<std::string> List(const std::string& folder, const std::string& pattern,
                                  ListFilter filter) const override {
        std::vector<std::string> names;
        std::error_code failed;  // a missing folder, or an entry removed meanwhile
        std::filesystem::directory_iterator entry(HostPath(folder.empty() ? "." : folder), failed);
        for (; !failed && entry != end(entry); entry.increment(failed)) {
            const std::string name = entry->path().filename();
            if (name.starts_with('.') && !filter.hidden) continue;
            if (MatchesPattern(name, pattern) && Exists(entry->path())) names.push_back(name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

}  // namespace

std::unique_ptr<Files> MakePosixFiles() {
    return std::make_unique<PosixFiles>();
}

}  // namespace vantor
