#include "platform/posix/PosixRegistry.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ctime>

#include "platform/posix/PosixHandle.hpp"

namespace vantor {
namespace {

constexpr mode_t kFileMode = 0600;    // it holds a proxy password, although scrambled
constexpr mode_t kFolderMode = 0700;  // as the XDG conventions require for configuration folders

RegistryResult ResultOf(int systemError) {
    const bool denied = systemError == EACCES || systemError == EPERM || systemError == EROFS;
    return denied ? kRegistryAccessDenied : kRegistryWriteFault;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// A failure here shows when the file in the folder is created.
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

PosixRegistry::Stamp PosixRegistry::StampOf(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return {};
    return {status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

/// Reads the file if it changed since the last read.
RegistryResult PosixRegistry::Refresh() {
    const PosixHandle file(open(mFile.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen() && errno != ENOENT && errno != ENOTDIR) return ResultOf(errno);
    const Stamp stamp = file.IsOpen() ? StampOf(file.Get()) : Stamp{};
    if (stamp == mStamp) return kRegistrySuccess;
    std::string text;
    if (file.IsOpen() && !ReadBytes(file.Get(), text)) return ResultOf(errno);
    mHive.Clear();
    mHive.Import(text);
    mStamp = stamp;
    return kRegistrySuccess;
}

/// Writes a new file next to the old one and renames it: a crash at any point leaves one of
/// the two intact.
RegistryResult PosixRegistry::Save(const std::string& text) {
    const std::string newFile = mFile + ".new";
    const PosixHandle file(
        open(newFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode));
    if (!file.IsOpen()) return ResultOf(errno);
    if (!WriteBytes(file.Get(), text) || fsync(file.Get()) != 0) return ResultOf(errno);
    const Stamp stamp = StampOf(file.Get());
    if (rename(newFile.c_str(), mFile.c_str()) != 0) return ResultOf(errno);
    mStamp = stamp;
    // The change is complete by now; some file systems cannot sync a folder and need not.
    const PosixHandle folder(open(FolderOf(mFile).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsOpen()) static_cast<void>(fsync(folder.Get()));
    return kRegistrySuccess;
}

/// Applies `change` to the current state of the file and stores the result; a change that cannot be
/// stored is rolled back.
RegistryResult PosixRegistry::Change(const std::function<RegistryResult()>& change) {
    CreateFolders(FolderOf(mFile));
    const PosixHandle lock = LockedFile(mFile + ".lock");
    if (!lock.IsOpen()) return ResultOf(errno);
    RegistryResult result = Refresh();
    if (result != kRegistrySuccess) return result;
    const std::string before = mHive.Export();
    result = change();
    if (result != kRegistrySuccess) return result;
    const std::string after = mHive.Export();
    if (after == before) return kRegistrySuccess;
    result = Save(after);
    if (result == kRegistrySuccess) return result;
    mHive.Clear();
    mHive.Import(before);
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
        static_cast<void>(mHive.CloseKey(created));  // open a moment ago
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
