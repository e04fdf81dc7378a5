// The sibling program's picture cache as a driver fills it, and a stand-in for the web browser.
#pragma once

#include <string>
#include <vector>

namespace vantor::driver {

/// An empty cache folder, and this driver as the handler of web addresses, while it exists.
class PictureCache {
public:
    PictureCache();
    ~PictureCache();
    PictureCache(const PictureCache&) = delete;
    PictureCache& operator=(const PictureCache&) = delete;

    void Clear() const;
    void Put(const std::string& name, const std::string& bytes) const;
    void Remove(const std::string& name) const;
    /// A picture of the size in pixels, red in its left half and blue in its right one, encoded
    /// as `kind`: "gif", "jpg", "bmp" or "png".
    void Draw(const std::string& name, const std::string& kind, int width, int height) const;

    /// The addresses that have been opened so far.
    static std::vector<std::string> Opened();
};

/// True when the system has started this driver to open an address, which it notes.
bool OpensAnAddress(int argc, char** argv);

}  // namespace vantor::driver
