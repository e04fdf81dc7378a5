// A folder for one test, off Windows.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace vantor {

/// An empty folder, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string path = (std::filesystem::temp_directory_path() / "vantor-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no temporary folder");
        mPath = path;
    }
    ~TemporaryFolder() {
        std::error_code failed;  // a folder left behind harms nobody
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
