#include "console/image/Sha256.hpp"

#include <algorithm>
#include <bit>

namespace vantor {
namespace {

constexpr std::array<std::uint32_t, 64> kRound = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

constexpr std::size_t kLengthBytes = 8;

std::uint32_t WordAt(const char* bytes) {
    std::uint32_t word = 0;
    for (int i = 0; i < 4; ++i) word = word << 8 | static_cast<unsigned char>(bytes[i]);
    return word;
}

}  // namespace

void Sha256::AddBlock(const char* block) {
    std::array<std::uint32_t, 64> w;
    for (std::size_t i = 0; i < 16; ++i) w[i] = WordAt(block + 4 * i);
    for (std::size_t i = 16; i < w.size(); ++i) {
        const std::uint32_t a = w[i - 15];
        const std::uint32_t b = w[i - 2];
        w[i] = w[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ (a >> 3)) + w[i - 7] +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ (b >> 10));
    }
    auto [a, b, c, d, e, f, g, h] = mState;
    for (std::size_t i = 0; i < w.size(); ++i) {
        const std::uint32_t t1 = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                                 ((e & f) ^ (~e & g)) + kRound[i] + w[i];
        const std::uint32_t t2 =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + t1;
        d = c;
        c = b;
        b = a;
        a = t1 + t2;
    }
    const std::array<std::uint32_t, 8> change = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < mState.size(); ++i) mState[i] += change[i];
}

void Sha256::Add(std::string_view bytes) {
    std::size_t pending = mLength % kBlock;
    mLength += bytes.size();
    if (pending > 0) {
        const std::size_t count = std::min(kBlock - pending, bytes.size());
        bytes.copy(mPending.data() + pending, count);
        bytes.remove_prefix(count);
        pending += count;
        if (pending < kBlock) return;
        AddBlock(mPending.data());
    }
    for (; bytes.size() >= kBlock; bytes.remove_prefix(kBlock)) AddBlock(bytes.data());
    bytes.copy(mPending.data(), bytes.size());
}

std::string Sha256::Finish() {
    const std::uint64_t bits = mLength * 8;
    std::string end(1, '\x80');
    while ((mLength + end.size() + kLengthBytes) % kBlock != 0) end += '\0';
    for (int shift = 56; shift >= 0; shift -= 8) end += static_cast<char>(bits >> shift);
    Add(end);
    std::string digest;
    for (const std::uint32_t word : mState)
        for (int shift = 28; shift >= 0; shift -= 4)
            digest += "0123456789abcdef"[word >> shift & 0xf];
    return digest;
}

std::string Sha256Of(std::string_view bytes) {
    Sha256 digest;
    digest.Add(bytes);
    return digest.Finish();
}

}  // namespace vantor
