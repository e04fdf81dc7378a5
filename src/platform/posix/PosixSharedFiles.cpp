// Files to which several processes append, on POSIX.
#include <fcntl.h>

#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixServices.hpp"

namespace vantor {
namespace {

/// Opens and locks the file; closing it releases the lock.
PosixHandle Locked(const std::string& path, struct stat& status) {
    constexpr mode_t kMode = 0666;  // further restricted by the umask
    // Without O_NONBLOCK, opening a named pipe in place of a file would block for ever.
    constexpr int kFlags = O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    PosixHandle file(Uninterrupted([&] { return open(path.c_str(), kFlags, kMode); }));
    if (!file.IsOpen()) RaiseFileError(errno);
    if (!LockOpenFile(file.Get()) || fstat(file.Get(), &status) != 0) RaiseFileError(errno);
    if (!S_ISREG(status.st_mode)) RaiseFileError(EINVAL);
    return file;
}

bool EndsWithin(int file, off_t size) {
    char last = '\n';
    return size > 0 && pread(file, &last, 1, size - 1) == 1 && last != '\n';
}

class PosixSharedFiles : public SharedFiles {
public:
    void Append(const std::string& path, std::string_view header,
                std::string_view record) override {
        struct stat status {};
        const PosixHandle file = Locked(path, status);
        std::string bytes;
        if (status.st_size == 0) bytes = header;
        if (!record.empty() && EndsWithin(file.Get(), status.st_size)) bytes = "\r\n";
        bytes += record;
        std::string_view rest = bytes;
        if (WriteAll(file.Get(), rest) && fdatasync(file.Get()) == 0) return;
        const int systemError = errno;
        if (ftruncate(file.Get(), status.st_size) != 0) RaiseFileError(EIO);  // part of it stays
        RaiseFileError(systemError);
    }
};

}  // namespace

std::unique_ptr<SharedFiles> MakePosixSharedFiles() {
    return std::make_unique<PosixSharedFiles>();
}

}  // namespace vantor
