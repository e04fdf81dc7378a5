// Pictures decoded by the system.
#pragma once

#include <memory>
#include <string>

namespace vantor {

/// A decoded picture. Only the implementation that draws it knows its representation.
class Picture {
public:
    virtual ~Picture() = default;
};

class Pictures {
public:
    virtual ~Pictures() = default;

    /// Decodes the GIF, JPEG or BMP file `path` with the system's codecs (OleLoadPicture). Raises
    /// RuntimeError 481 when it holds no decodable picture, or an error of the file (see Files).
    virtual std::shared_ptr<const Picture> Load(const std::string& path) = 0;
};

}  // namespace vantor
