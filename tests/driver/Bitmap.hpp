// A picture file for tests: above, the left half red and the right half blue; below, white.
#pragma once

#include <cstdint>
#include <string>

#include "platform/win32/services/Windows.hpp"

namespace vantor::driver {

inline std::string Bitmap(int width, int height) {
    const BITMAPINFOHEADER info = {sizeof info, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    BITMAPFILEHEADER file{};
    file.bfType = 0x4d42;  // "BM"
    file.bfOffBits = sizeof file + sizeof info;
    file.bfSize = file.bfOffBits + static_cast<DWORD>(4 * width * height);
    std::string bytes(reinterpret_cast<const char*>(&file), sizeof file);
    bytes.append(reinterpret_cast<const char*>(&info), sizeof info);
    for (int y = 0; y < height; ++y)  // from the bottom up
        for (int x = 0; x < width; ++x) {
            const std::uint32_t upper = x < width / 2 ? 0xff0000 : 0x0000ff;
            const std::uint32_t pixel = y < height / 2 ? 0xffffff : upper;
            bytes.append(reinterpret_cast<const char*>(&pixel), sizeof pixel);
        }
    return bytes;
}

}  // namespace vantor::driver
