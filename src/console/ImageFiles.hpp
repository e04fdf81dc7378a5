// The file service of one run: forwards to the system's, but serves the image read at the start.
#pragma once

#include <string>
#include <utility>

#include "platform/Files.hpp"

namespace vantor {

/// The session reads the image only after SYSLOAD. If the file were changed, removed or locked
/// after the check, the indicator would be left without firmware.
class ImageFiles : public Files {
public:
    /// `path` means `image`, byte for byte. `system` outlives the object.
    ImageFiles(Files& system, std::string path, std::string image)
        : mSystem(system), mPath(std::move(path)), mImage(std::move(image)) {}

    const std::string& Image() const { return mImage; }

    bool Exists(const std::string& path) const override {
        return path == mPath || mSystem.Exists(path);
    }
    bool SameFile(const std::string& path, const std::string& other) const override {
        return mSystem.SameFile(path, other);
    }
    std::uint64_t Size(const std::string& path) const override {
        return path == mPath ? mImage.size() : mSystem.Size(path);
    }
    std::string ReadStart(const std::string& path, std::size_t most) const override {
        return path == mPath ? mImage.substr(0, most) : mSystem.ReadStart(path, most);
    }
    void WriteAll(const std::string& path, std::string_view bytes) override {
        mSystem.WriteAll(path, bytes);
    }
    void Append(const std::string& path, std::string_view bytes) override {
        mSystem.Append(path, bytes);
    }
    std::unique_ptr<OutputFile> Create(const std::string& path) override {
        return mSystem.Create(path);
    }
    void Delete(const std::string& path) override { mSystem.Delete(path); }
    void CreateFolders(const std::string& path) override { mSystem.CreateFolders(path); }
    std::vector<std::string> List(const std::string& folder, const std::string& pattern,
                                  ListFilter filter) const override {
        return mSystem.List(folder, pattern, filter);
    }

private:
    Files& mSystem;
    std::string mPath;
    std::string mImage;
};

}  // namespace vantor
