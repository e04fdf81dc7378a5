#include "content/CImageInfo.hpp"

#include <algorithm>
#include <array>

#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

constexpr std::size_t kBufferSize = 65535;
// Every marker search ends here, so that the data after the marker is still inside the buffer.
constexpr std::size_t kSearchEnd = kBufferSize - 10;

std::int32_t Mult(std::uint8_t low, std::uint8_t high) {
    return low + 256 * high;
}

std::uint8_t ToDepth(int bits) {
    if (bits > 255) throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<std::uint8_t>(bits);
}

/// The frame headers; the codes excluded from the range are tables.
bool IsStartOfFrame(std::uint8_t marker) {
    return marker >= 192 && marker <= 207 && marker != 196 && marker != 200 && marker != 204;
}

}  // namespace

void CImageInfo::ReadImageInfo(const std::string& path) {
    mWidth = mHeight = mDepth = 0;
    mType = Type::Unknown;
    mBytes = mFiles.ReadStart(path, kBufferSize);
    if (At(0) == 137 && At(1) == 'P' && At(2) == 'N') ReadPng();
    if (At(0) == 'G' && At(1) == 'I' && At(2) == 'F') ReadGif();
    if (At(0) == 'B' && At(1) == 'M') ReadBmp();
    if (mType == Type::Unknown) ReadJpeg();
    mBytes.clear();
}

/// Beyond the end of a short file the buffer reads as zeros.
std::uint8_t CImageInfo::At(std::size_t position) const {
    return position < mBytes.size() ? static_cast<std::uint8_t>(mBytes[position]) : std::uint8_t{0};
}

std::int32_t CImageInfo::LowFirst(std::size_t position) const {
    return Mult(At(position), At(position + 1));
}

std::int32_t CImageInfo::HighFirst(std::size_t position) const {
    return Mult(At(position + 1), At(position));
}

void CImageInfo::ReadPng() {
    // By colour type; 0 where there is no such type. A palette index (3) counts as 8 bits.
    constexpr std::array<int, 7> kSamplesPerPixel = {1, 0, 3, 1, 2, 0, 4};
    const std::uint8_t colourType = At(25);
    if (colourType >= kSamplesPerPixel.size() || kSamplesPerPixel[colourType] == 0) return;
    mDepth = colourType == 3 ? std::uint8_t{8} : ToDepth(kSamplesPerPixel[colourType] * At(24));
    mType = Type::Png;
    // The low 16 bits of the two sizes.
    mWidth = HighFirst(18);
    mHeight = HighFirst(22);
}

void CImageInfo::ReadGif() {
    mType = Type::Gif;
    mWidth = LowFirst(6);
    mHeight = LowFirst(8);
    mDepth = static_cast<std::uint8_t>((At(10) & 7) + 1);
}

void CImageInfo::ReadBmp() {
    mType = Type::Bmp;
    mWidth = LowFirst(18);
    mHeight = LowFirst(22);
    mDepth = At(28);
}

void CImageInfo::ReadJpeg() {
    // No marker can start past the end of a short file.
    const std::size_t end = std::min(kSearchEnd, mBytes.size());
    std::size_t at = 0;
    while (!(At(at) == 255 && At(at + 1) == 216 && At(at + 2) == 255))
        if (++at >= end) return;
    at += 2;
    for (;;) {
        while (!(At(at) == 255 && At(at + 1) != 255))
            if (++at >= end) return;
        ++at;
        if (IsStartOfFrame(At(at))) break;
        at += static_cast<std::size_t>(HighFirst(at + 1));
        if (at >= end) return;
    }
    mType = Type::Jpeg;
    mHeight = HighFirst(at + 4);
    mWidth = HighFirst(at + 6);
    mDepth = ToDepth(8 * At(at + 8));
}

}  // namespace vantor
