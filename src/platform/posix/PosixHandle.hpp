// Owns a file descriptor and closes it; reads and writes through one completely.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace vantor {

class PosixHandle {
public:
    PosixHandle() = default;
    explicit PosixHandle(int descriptor) : mDescriptor(descriptor) {}
    PosixHandle(PosixHandle&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
    PosixHandle& operator=(PosixHandle&& other) noexcept {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    // A failed close needs no handling: the descriptor is released either way.
    ~PosixHandle() {
        if (IsOpen()) close(mDescriptor);
    }

    bool IsOpen() const { return mDescriptor >= 0; }
    int Get() const { return mDescriptor; }

private:
    int mDescriptor = -1;
};

/// Raises the RuntimeError for a failed file operation: 76, 70, 61, else 75.
[[noreturn]] void RaiseFileError(int systemError);

/// Repeats the system call `call` while it fails with EINTR.
template <typename Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

/// Writes `bytes` and removes from it what was written. False on failure, with the reason in errno.
/// Async-signal-safe.
inline bool WriteAll(int descriptor, std::string_view& bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            Uninterrupted([&] { return write(descriptor, bytes.data(), bytes.size()); });
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// Locks the open file for this process, until it is closed. Waits for a few seconds while another
/// process has it locked. False on failure, with the reason in errno.
bool LockOpenFile(int descriptor);

struct FileContents {
    int systemError = 0;  ///< why there are none; EISDIR for anything but a regular file
    struct stat status {};
    std::string bytes;
};

/// The first `most` bytes of the file `path`, or all if there are fewer.
FileContents ReadRegularFile(const std::string& path, std::size_t most = std::string::npos);

}  // namespace vantor
