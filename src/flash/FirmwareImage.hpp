// The firmware image as a list of lines. Does not interpret them; the indicator does.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

class Files;

/// The lines of an image, indexed from 0, as bytes without terminators. Lines are views into
/// the file's text, which the list owns. Movable.
class ImageLines {
public:
    /// A list that was never sized.
    ImageLines() = default;
    /// Splits `text` at each line feed; a carriage return before it is part of the terminator.
    /// Text after the last line feed is a line too; an empty text is one empty line.
    explicit ImageLines(std::string text);

    /// The last index. Raises RuntimeError 9 when the list was never sized.
    std::size_t UBound() const;
    bool Sized() const { return !mLines.empty(); }

    /// Line `index`. Raises RuntimeError 9 beyond the last one.
    std::string_view operator[](std::size_t index) const;

private:
    std::unique_ptr<const std::string> mText;  // keeps its address when the list is moved
    std::vector<std::string_view> mLines;
};

/// Reads the image at `path`. A missing file gives an unsized list without a message; a read error
/// is reported under "frmMain.FileToStringArray" and also gives an unsized list.
ImageLines FileToStringArray(const std::string& path, const Files& files);

}  // namespace vantor
