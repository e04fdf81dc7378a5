// The registry on POSIX. It adds only storage to the in-memory registry.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <system_error>
#include <tuple>
#include <utility>

#include "platform/portable/RegistryHive.hpp"
#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixServices.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kFileMode = 0600;    // it holds a proxy password, although scrambled
constexpr mode_t kFolderMode = 0700;  // as the XDG conventions require for configuration folders

RegistryResult ResultOf(int systemError) {
    const bool denied = systemError == EACCES || systemError == EPERM || systemError == EROFS;
    return denied ? kRegistryAccessDenied : kRegistryWriteFault;
}

bool IsMissing(int systemError) {
    return systemError == ENOENT || systemError == ENOTDIR;
}

/// Why the file cannot be read.
ErrorNumber ErrorOf(int systemError) {
    if (systemError == EACCES || systemError == EPERM) return ErrorNumber::PermissionDenied;
    return systemError == EIO ? ErrorNumber::DeviceIO : ErrorNumber::PathFileAccess;
}

/// The target of `path` with symbolic links resolved. The target may not exist yet.
fs::path TargetOf(fs::path path) {
    constexpr int kMostLinks = 40;  // the system's limit
    std::error_code isNoLink;
    for (int i = 0; i < kMostLinks; ++i) {
        const fs::path next = fs::read_symlink(path, isNoLink);
        if (isNoLink) break;
        path = path.parent_path() / next;
    }
    return path;
}

// A failure shows when the file in the folder is created.
void CreateFolders(const fs::path& folder) {
    if (!folder.has_relative_path()) return;
    CreateFolders(folder.parent_path());
    mkdir(folder.c_str(), kFolderMode);
}

/// An open file, locked until it is destroyed; not open on failure, with the reason in errno.
PosixHandle LockedFile(const std::string& path) {
    PosixHandle file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kFileMode));
    return file.IsOpen() && LockOpenFile(file.Get()) ? std::move(file) : PosixHandle();
}

/// Identifies one state of the file by node, size and time; all zero when there is no file.
using Stamp = std::tuple<ino_t, off_t, time_t, long>;

Stamp StampOf(const struct stat& status) {
    return {status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

class PosixRegistry : public RegistryHive {
public:
    explicit PosixRegistry(const std::string& file) : mFile(file) {}

    RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                           RegistryKey& key) override {
        const RegistryResult result = Refresh();
        if (result != kRegistrySuccess) return result;
        return RegistryHive::OpenKey(root, path, access, key);
    }

    RegistryResult CreateKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                             RegistryKey& key) override {
        RegistryResult result = OpenKey(root, path, access, key);
        if (result != kRegistryFileNotFound) return result;
        RegistryKey created = 0;
        result = Change([&] { return RegistryHive::CreateKey(root, path, access, created); });
        if (result == kRegistrySuccess)
            key = created;
        else
            CloseKey(created);  // 0 when nothing was created
        return result;
    }

    RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                            std::string_view bytes) override {
        return Change([&] { return RegistryHive::SetValue(key, name, type, bytes); });
    }

private:
    /// Reads the file if it changed since the last read.
    RegistryResult Refresh() {
        struct stat status {};
        const bool found = stat(mFile.c_str(), &status) == 0;
        const bool missing = !found && IsMissing(errno);
        const bool known = (found && StampOf(status) == mStamp) || (missing && mStamp == Stamp{});
        return known && !mTold ? kRegistrySuccess : Reread();
    }

    RegistryResult Reread() {
        const FileContents contents = ReadRegularFile(mFile);
        const int error = contents.systemError;
        if (error != 0 && !IsMissing(error)) return Tell({mFile, 0, ErrorOf(error)});
        Clear();
        if (const std::size_t line = Import(contents.bytes); line != 0)
            return Tell({mFile, line, ErrorNumber::InvalidFileFormat});
        mStamp = error == 0 ? StampOf(contents.status) : Stamp{};
        mTold = false;
        return kRegistrySuccess;
    }

    RegistryResult Tell(const UnreadableStore& error) {
        Clear();
        if (std::exchange(mTold, true)) return kRegistryCorrupt;
        throw error;
    }

    /// Writes a new file beside the old one and renames it: after a crash at any point, one of the
    /// two is complete.
    RegistryResult Save(const fs::path& target, std::string_view text) {
        const std::string newFile = target.string() + ".new";
        const PosixHandle file(
            open(newFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode));
        if (!file.IsOpen()) return ResultOf(errno);
        struct stat status {};
        if (!WriteAll(file.Get(), text) || fsync(file.Get()) != 0 ||
            fstat(file.Get(), &status) != 0 || rename(newFile.c_str(), target.c_str()) != 0) {
            const RegistryResult result = ResultOf(errno);
            unlink(newFile.c_str());  // the failed write is the error to report
            return result;
        }
        mStamp = StampOf(status);
        // The rename is complete; some file systems cannot sync a folder and need not.
        const fs::path folder = target.has_parent_path() ? target.parent_path() : ".";
        const PosixHandle opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (opened.IsOpen()) fsync(opened.Get());
        return kRegistrySuccess;
    }

    /// Applies `change` to the newest state of the file and stores the result; reverts a change
    /// that cannot be stored. Reads the file regardless of its time stamp: two programs can write
    /// within one tick of the file system's clock.
    RegistryResult Change(const std::function<RegistryResult()>& change) {
        const fs::path target = TargetOf(mFile);
        CreateFolders(target.parent_path());
        const PosixHandle lock = LockedFile(target.string() + ".lock");
        if (!lock.IsOpen()) return ResultOf(errno);
        RegistryResult result = Reread();
        if (result != kRegistrySuccess) return result;
        const std::string before = Export();
        result = change();
        if (result != kRegistrySuccess) return result;
        const std::string after = Export();
        if (after == before) return kRegistrySuccess;
        result = Save(target, after);
        if (result == kRegistrySuccess) return result;
        Clear();
        Import(before);
        return result;
    }

    std::string mFile;
    Stamp mStamp;        // of the contents in memory
    bool mTold = false;  // UnreadableStore was raised
};

}  // namespace

std::unique_ptr<Registry> MakePosixRegistry(const std::string& file) {
    return std::make_unique<PosixRegistry>(file);
}

}  // namespace vantor
