// Picture properties from the header of a file, to distinguish a picture from a file that only has
// the name of one. Decodes nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Files.hpp"

namespace vantor {

class CImageInfo {
public:
    enum class Type : std::int16_t { Unknown = 0, Gif = 1, Jpeg = 2, Png = 3, Bmp = 4 };

    /// `files` must outlive this object.
    explicit CImageInfo(const Files& files) : mFiles(files) {}

    std::int32_t Width() const { return mWidth; }    ///< pixels
    std::int32_t Height() const { return mHeight; }  ///< pixels
    std::uint8_t Depth() const { return mDepth; }    ///< bits per pixel
    Type ImageType() const { return mType; }

    /// Sets the four from the first 65535 bytes of `path`. Raises RuntimeError 6 for a depth above
    /// 255, or the error of an unreadable file (see Files).
    void ReadImageInfo(const std::string& path);

private:
    std::uint8_t At(std::size_t position) const;
    std::int32_t LowFirst(std::size_t position) const;
    std::int32_t HighFirst(std::size_t position) const;
    void ReadPng();
    void ReadGif();
    void ReadBmp();
    void ReadJpeg();

    const Files& mFiles;
    std::string mBytes;  // only while reading
    std::int32_t mWidth = 0;
    std::int32_t mHeight = 0;
    std::uint8_t mDepth = 0;
    Type mType = Type::Unknown;
};

}  // namespace vantor
