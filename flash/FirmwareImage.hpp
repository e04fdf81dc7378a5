// The firmware image as a list of lines. What a line means is the indicator's business.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

class Files;

/// The lines of an image, indexed from 0, as bytes without their terminators.
/// Lines are views into the file's text, which the list owns, and lie in blocks, so that growing
/// by a step moves nothing that is already there.
class ImageLines {
public:
    ImageLines() = default;
    ImageLines(ImageLines&&) = default;
    ImageLines& operator=(ImageLines&&) = default;
    ImageLines(const ImageLines&) = delete;
    ImageLines& operator=(const ImageLines&) = delete;

    /// Splits `text` at each line feed; a carriage return before it belongs to the terminator.
    /// Text behind the last line feed is a line too; an empty text gives one empty line.
    explicit ImageLines(std::string text);

    /// The last index. Raises RuntimeError 9 when the list was never sized.
    std::size_t UBound() const;
    bool Sized() const { return mSized; }

    /// Line `index`. Raises RuntimeError 9 beyond the last one.
    std::string_view operator[](std::size_t index) const;

private:
    // Room for the indices 0 to 15000 at first, then 5000 more at a time.
    static constexpr std::size_t kFirstSize = 15001;
    static constexpr std::size_t kStep = 5000;
    using Block = std::unique_ptr<std::string_view[]>;

    std::string_view& Slot(std::size_t index) const;
    void Split();

    std::unique_ptr<const std::string> mText;  // stays in place when the list is moved
    Block mFirst;
    std::vector<Block> mSteps;
    std::size_t mCount = 0;
    bool mSized = false;
};

/// Reads the image at `path`. A file that does not exist gives an unsized list without any
/// message; a read error is reported under "frmMain.FileToStringArray" and gives the same.
ImageLines FileToStringArray(const std::string& path, const Files& files);

}  // namespace vantor
