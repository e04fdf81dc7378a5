#include "flash/FirmwareImage.hpp"

#include <utility>

#include "platform/Files.hpp"
#include "support/Traps.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

ImageLines::ImageLines(std::string text)
    : mText(std::make_unique<const std::string>(std::move(text))),
      mFirst(std::make_unique<std::string_view[]>(kFirstSize)),
      mSized(true) {
    Split();
}

void ImageLines::Split() {
    std::string_view rest = *mText;
    while (!rest.empty()) {
        const std::size_t lineFeed = rest.find('\n');
        std::string_view line = rest.substr(0, lineFeed);
        rest.remove_prefix(lineFeed == std::string_view::npos ? rest.size() : lineFeed + 1);
        if (lineFeed != std::string_view::npos && line.ends_with('\r')) line.remove_suffix(1);
        Slot(mCount++) = line;
        const std::size_t lastIndex = kFirstSize - 1 + mSteps.size() * kStep;
        if (mCount == lastIndex) mSteps.push_back(std::make_unique<std::string_view[]>(kStep));
    }
    // An empty file is one empty line, not zero lines.
    if (mCount == 0) mCount = 1;
}

std::string_view& ImageLines::Slot(std::size_t index) const {
    if (index < kFirstSize) return mFirst[index];
    const std::size_t beyond = index - kFirstSize;
    return mSteps[beyond / kStep][beyond % kStep];
}

std::size_t ImageLines::UBound() const {
    if (!mSized) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return mCount - 1;
}

std::string_view ImageLines::operator[](std::size_t index) const {
    if (index >= mCount) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return Slot(index);
}

ImageLines FileToStringArray(const std::string& path, const Files& files) {
    ImageLines lines;
    Trapped("frmMain.FileToStringArray", [&] {
        if (files.Exists(path)) lines = ImageLines(files.ReadAll(path));
    });
    return lines;
}

}  // namespace vantor
