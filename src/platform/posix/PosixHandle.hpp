// Owns a file descriptor and closes it. Does no I/O.
#pragma once

#include <unistd.h>

#include <cerrno>
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
        if (IsOpen()) static_cast<void>(close(mDescriptor));
    }

    bool IsOpen() const { return mDescriptor >= 0; }
    int Get() const { return mDescriptor; }

private:
    int mDescriptor = -1;
};

/// Repeats the system call `call` while it fails with EINTR.
template <typename Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

}  // namespace vantor
