// Headers of image files (GIF, JPEG, BMP, PNG).
#include <tuple>

#include "content/CImageInfo.hpp"
#include "platform/headless/HeadlessFiles.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {
namespace {

using Header = std::tuple<CImageInfo::Type, int, int, int>;

/// Reads `bytes` with one CImageInfo for all files, as the program does; zeros for a rejected file.
Header HeaderOf(std::string_view bytes) {
    static HeadlessFiles files;
    static CImageInfo info(files);
    files.WriteAll("p", bytes);
    if (!Accepts([] { info.ReadImageInfo("p"); })) return {};
    return {info.ImageType(), info.Width(), info.Height(), info.Depth()};
}

}  // namespace

std::vector<std::string> Seeds() {
    const std::string zeros(10, '\0');
    return {"GIF89a\x40\x01\xC8\x01\xF7", "BM" + zeros + "1234" + zeros + "5678" + zeros,
            "\x89PNG" + zeros + "1234567890" + "\x08\x06" + zeros,
            "\xFF\xD8\xFF\xE0\x01\x04zz\xFF\xC4\x01\x02\xFF\xFF\xC2\x01\x11\x08" + zeros};
}

void Fuzz(std::string_view input) {
    const Header header = HeaderOf(input);
    const auto [type, width, height, depth] = header;
    Require(width >= 0 && width <= 65535 && height >= 0 && height <= 65535);
    if (type == CImageInfo::Type::Unknown) Require(header == Header{});
    if (type == CImageInfo::Type::Gif) Require(depth >= 1 && depth <= 8);
    // A truncated file reads as if padded with zeros.
    Require(HeaderOf(std::string(input) + std::string(16, '\0')) == header);
}

}  // namespace vantor
