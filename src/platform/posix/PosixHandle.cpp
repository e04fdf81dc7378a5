#include "platform/posix/PosixHandle.hpp"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <ctime>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

void RaiseFileError(int systemError) {
    switch (systemError) {
        case ENOENT:
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

namespace {

/// Returns 0 or the system's error.
int ReadInto(FileContents& contents, const std::string& path, std::size_t most) {
    // Without O_NONBLOCK, opening a named pipe in place of a file would block for ever.
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    const PosixHandle file(Uninterrupted([&] { return open(path.c_str(), kFlags); }));
    if (!file.IsOpen() || fstat(file.Get(), &contents.status) != 0) return errno;
    if (!S_ISREG(contents.status.st_mode)) return EISDIR;
    // The size is only a hint: the file may grow meanwhile, and some system files (/proc) report 0.
    // One extra byte detects the end of file without another iteration.
    std::string& bytes = contents.bytes;
    bytes.resize(std::min(static_cast<std::size_t>(contents.status.st_size) + 1, most));
    std::size_t length = 0;
    while (length < most) {
        if (length == bytes.size())
            bytes.resize(std::min(length + std::max<std::size_t>(length, 4096), most));
        const ssize_t count = Uninterrupted(
            [&] { return read(file.Get(), bytes.data() + length, bytes.size() - length); });
        if (count < 0) return errno;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return 0;
}

}  // namespace

bool LockOpenFile(int descriptor) {
    constexpr int kTries = 1000;
    constexpr timespec kPause = {0, 5'000'000};
    // LOCK_NB: with a blocking lock, one stopped process would hang all the others.
    for (int i = 0; i < kTries; ++i) {
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) return true;
        if (errno != EWOULDBLOCK && errno != EINTR) return false;
        nanosleep(&kPause, nullptr);  // a shorter pause is harmless
    }
    errno = EWOULDBLOCK;
    return false;
}

FileContents ReadRegularFile(const std::string& path, std::size_t most) {
    FileContents contents;
    contents.systemError = ReadInto(contents, path, most);
    return contents;
}

}  // namespace vantor
