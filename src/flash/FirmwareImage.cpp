#include "flash/FirmwareImage.hpp"

#include <utility>

#include "platform/Files.hpp"
#include "support/Traps.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

ImageLines::ImageLines(std::string text)
    : mText(std::make_unique<const std::string>(std::move(text))) {
    std::string_view rest = *mText;
    // An empty file is one empty line, not zero lines.
    do {
        const std::size_t lineFeed = rest.find('\n');
        std::string_view line = rest.substr(0, lineFeed);
        rest.remove_prefix(lineFeed == std::string_view::npos ? rest.size() : lineFeed + 1);
        if (lineFeed != std::string_view::npos && line.ends_with('\r')) line.remove_suffix(1);
        mLines.push_back(line);
    } while (!rest.empty());
}

std::size_t ImageLines::UBound() const {
    if (!Sized()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return mLines.size() - 1;
}

std::string_view ImageLines::operator[](std::size_t index) const {
    if (index >= mLines.size()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return mLines[index];
}

ImageLines FileToStringArray(const std::string& path, const Files& files) {
    ImageLines lines;
    Trapped("frmMain.FileToStringArray", [&] {
        if (files.Exists(path)) lines = ImageLines(files.ReadAll(path));
    });
    return lines;
}

}  // namespace vantor
