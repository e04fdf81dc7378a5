// An open file of the system that closes itself. Not for reading or writing by itself.
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
    // Nothing can be done about a refused close: the descriptor is gone either way.
    ~PosixHandle() {
        if (IsOpen()) static_cast<void>(close(mDescriptor));
    }

    bool IsOpen() const { return mDescriptor >= 0; }
    int Get() const { return mDescriptor; }

private:
    int mDescriptor = -1;
};

/// Repeats the system call `call` while a signal interrupts it.
template <typename Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

}  // namespace vantor
