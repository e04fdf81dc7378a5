// The SHA-256 digest (FIPS 180-4). No system library for it exists on every platform.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantor {

class Sha256 {
public:
    /// Adds `bytes` to the message.
    void Add(std::string_view bytes);
    /// Ends the message and returns its digest, 64 hexadecimal digits in lower case. Call it once.
    std::string Finish();

private:
    static constexpr std::size_t kBlock = 64;

    void AddBlock(const char* block);

    std::array<std::uint32_t, 8> mState = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                           0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<char, kBlock> mPending{};  // the start of an incomplete block
    std::uint64_t mLength = 0;            // in bytes
};

/// The digest of `bytes`.
std::string Sha256Of(std::string_view bytes);

}  // namespace vantor
