// A folder for one test.
#pragma once

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

namespace vantor {

/// An empty folder, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder()
        : mPath(std::filesystem::temp_directory_path() /
                ("vantor-" + std::to_string(std::random_device()()))) {
        if (!std::filesystem::create_directory(mPath)) throw std::runtime_error("already there");
    }
    ~TemporaryFolder() {
        std::error_code failed;  // a leftover folder is harmless
        std::filesystem::remove_all(mPath, failed);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return mPath; }
    std::string operator/(const std::string& name) const { return (mPath / name).string(); }

private:
    std::filesystem::path mPath;
};

}  // namespace vantor
