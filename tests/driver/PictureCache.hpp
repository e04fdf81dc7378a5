// Fills the sibling program's picture cache and replaces the web browser, for driver programs.
#pragma once

#include <string>
#include <vector>

namespace vantor::driver {

/// Empties the cache folder and registers this driver as the http handler during its lifetime.
class PictureCache {
public:
    PictureCache();
    ~PictureCache();
    PictureCache(const PictureCache&) = delete;
    PictureCache& operator=(const PictureCache&) = delete;

    void Clear() const;
    void Put(const std::string& name, const std::string& bytes) const;
    void Remove(const std::string& name) const;
    /// Writes a picture of `width` x `height` pixels, left half red, right half blue, encoded as
    /// `kind`: "gif", "jpg", "bmp" or "png".
    void Draw(const std::string& name, const std::string& kind, int width, int height) const;

    /// The URLs opened so far.
    static std::vector<std::string> Opened();
};

/// True when the system has started this driver to open a URL; records the URL.
bool OpensAnAddress(int argc, char** argv);

}  // namespace vantor::driver
