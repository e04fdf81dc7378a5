#include "platform/posix/PosixRegistry.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <utility>

#include "platform/posix/PosixHandle.hpp"

namespace vantor {
namespace {

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

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// The target of `path` with symbolic links resolved. The target may not exist yet.
std::string TargetOf(std::string path) {
    constexpr int kMostLinks = 40;  // the system's limit
    std::array<char, PATH_MAX> target{};
    for (int i = 0; i < kMostLinks; ++i) {
        const ssize_t length = readlink(path.c_str(), target.data(), target.size());
        if (length <= 0) break;
        const std::string_view next(target.data(), static_cast<std::size_t>(length));
        path = next.starts_with('/') ? std::string() : FolderOf(path).append("/");
        path += next;
    }
    return path;
}

// A failure shows when the file in the folder is created.
void CreateFolders(const std::string& folder) {
    for (std::size_t end = folder.find('/', 1); end != std::string::npos;
         end = folder.find('/', end + 1))
        static_cast<void>(mkdir(folder.substr(0, end).c_str(), kFolderMode));
    static_cast<void>(mkdir(folder.c_str(), kFolderMode));
}

/// An open file, locked until it is destroyed; not open on failure, with the reason in errno.
PosixHandle LockedFile(const std::string& path) {
    constexpr int kTries = 1000;
    constexpr timespec kPause = {0, 5'000'000};
    PosixHandle file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kFileMode));
    // LOCK_NB: with a blocking lock, one stopped process would hang all the others.
    for (int i = 0; file.IsOpen() && i < kTries; ++i) {
        if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0) return file;
        if (errno != EWOULDBLOCK && errno != EINTR) return {};
        static_cast<void>(nanosleep(&kPause, nullptr));  // a shorter pause is harmless
    }
    return {};
}

bool WriteBytes(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            Uninterrupted([&] { return write(descriptor, bytes.data(), bytes.size()); });
        if (count < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool ReadBytes(int descriptor, std::string& bytes) {
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t count =
            Uninterrupted([&] { return read(descriptor, buffer.data(), buffer.size()); });
        if (count <= 0) return count == 0;
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

std::string DefaultRegistryFile(const Folders& folders) {
    return folders.ApplicationData() + "/tessmar-vantor-update/registry.reg";
}

PosixRegistry::Stamp PosixRegistry::StampOf(const struct stat& status) {
    return {status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

/// Reads the file if it changed since the last read.
RegistryResult PosixRegistry::Refresh() {
    struct stat status {};
    const bool found = stat(mFile.c_str(), &status) == 0;
    const bool missing = !found && IsMissing(errno);
    const bool known = (found && StampOf(status) == mStamp) || (missing && mStamp == Stamp{});
    return known && !mTold ? kRegistrySuccess : Reread();
}

RegistryResult PosixRegistry::Reread() {
    // Without O_NONBLOCK, opening a pipe in place of the file would block for ever.
    const PosixHandle file(open(mFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.IsOpen() && !IsMissing(errno)) return Tell({mFile, 0, ErrorOf(errno)});
    std::string text;
    Stamp stamp;
    if (file.IsOpen()) {
        struct stat status {};
        if (fstat(file.Get(), &status) != 0) return Tell({mFile, 0, ErrorOf(errno)});
        if (!S_ISREG(status.st_mode)) return Tell({mFile, 0, ErrorNumber::PathFileAccess});
        if (!ReadBytes(file.Get(), text)) return Tell({mFile, 0, ErrorOf(errno)});
        stamp = StampOf(status);
    }
    mHive.Clear();
    if (const std::size_t line = mHive.Import(text); line != 0)
        return Tell({mFile, line, ErrorNumber::InvalidFileFormat});
    mStamp = stamp;
    mTold = false;
    return kRegistrySuccess;
}

RegistryResult PosixRegistry::Tell(const UnreadableStore& error) {
    mHive.Clear();
    if (std::exchange(mTold, true)) return kRegistryCorrupt;
    throw error;
}

/// Writes a new file beside the old one and renames it: after a crash at any point, one of the
/// two is complete.
RegistryResult PosixRegistry::Save(const std::string& target, const std::string& text) {
    const std::string newFile = target + ".new";
    const PosixHandle file(
        open(newFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode));
    if (!file.IsOpen()) return ResultOf(errno);
    struct stat status {};
    if (!WriteBytes(file.Get(), text) || fsync(file.Get()) != 0 ||
        fstat(file.Get(), &status) != 0 || rename(newFile.c_str(), target.c_str()) != 0) {
        const RegistryResult result = ResultOf(errno);
        static_cast<void>(unlink(newFile.c_str()));  // the failed write is the error to report
        return result;
    }
    mStamp = StampOf(status);
    // The rename is complete; some file systems cannot sync a folder and need not.
    const PosixHandle folder(open(FolderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsOpen()) static_cast<void>(fsync(folder.Get()));
    return kRegistrySuccess;
}

/// Applies `change` to the newest state of the file and stores the result; reverts a change that
/// cannot be stored. Reads the file regardless of its time stamp: two programs can write within one
/// tick of the file system's clock.
RegistryResult PosixRegistry::Change(const std::function<RegistryResult()>& change) {
    const std::string target = TargetOf(mFile);
    CreateFolders(FolderOf(target));
    const PosixHandle lock = LockedFile(target + ".lock");
    if (!lock.IsOpen()) return ResultOf(errno);
    RegistryResult result = Reread();
    if (result != kRegistrySuccess) return result;
    const std::string before = mHive.Export();
    result = change();
    if (result != kRegistrySuccess) return result;
    const std::string after = mHive.Export();
    if (after == before) return kRegistrySuccess;
    result = Save(target, after);
    if (result == kRegistrySuccess) return result;
    mHive.Clear();
    static_cast<void>(mHive.Import(before));  // its own export
    return result;
}

RegistryResult PosixRegistry::OpenKey(RegistryRoot root, const std::string& path,
                                      std::uint32_t access, RegistryKey& key) {
    const RegistryResult result = Refresh();
    return result == kRegistrySuccess ? mHive.OpenKey(root, path, access, key) : result;
}

RegistryResult PosixRegistry::CreateKey(RegistryRoot root, const std::string& path,
                                        std::uint32_t access, RegistryKey& key) {
    const RegistryResult result = OpenKey(root, path, access, key);
    if (result != kRegistryFileNotFound) return result;
    RegistryKey created = 0;
    const RegistryResult outcome =
        Change([&] { return mHive.CreateKey(root, path, access, created); });
    if (outcome == kRegistrySuccess)
        key = created;
    else if (created != 0)
        static_cast<void>(mHive.CloseKey(created));  // opened above
    return outcome;
}

RegistryResult PosixRegistry::QueryValue(RegistryKey key, const std::string& name,
                                         std::uint32_t& type, char* data, std::uint32_t& size) {
    return mHive.QueryValue(key, name, type, data, size);
}

RegistryResult PosixRegistry::SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                                       std::string_view bytes) {
    return Change([&] { return mHive.SetValue(key, name, type, bytes); });
}

RegistryResult PosixRegistry::CloseKey(RegistryKey key) {
    return mHive.CloseKey(key);
}

}  // namespace vantor
