// An in-memory file system, for tests and for the image of tsflash. Paths are case-sensitive; "\"
// and "/" are equivalent. It has no permissions, no links and no current folder.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.hpp"

namespace vantor {

class HeadlessFiles : public Files {
public:
    bool Exists(const std::string& path) const override;
    bool SameFile(const std::string& path, const std::string& other) const override {
        return Exists(path) && Normal(path) == Normal(other);
    }
    std::uint64_t Size(const std::string& path) const override { return Contents(path).size(); }
    std::string ReadStart(const std::string& path, std::size_t most) const override {
        return Contents(path).substr(0, most);
    }
    void WriteAll(const std::string& path, std::string_view bytes) override {
        Writable(path) = bytes;
    }
    void Append(const std::string& path, std::string_view bytes) override {
        Writable(path) += bytes;
    }
    std::unique_ptr<OutputFile> Create(const std::string& path) override;
    void Delete(const std::string& path) override;
    void CreateFolders(const std::string& path) override;
    std::vector<std::string> List(const std::string& folder, const std::string& pattern,
                                  ListFilter filter) const override;

    /// Adds a file and its parent folders.
    void Add(const std::string& path, std::string_view bytes);

    /// Every operation on `path` that can raise raises `errorNumber` from now on; 0 ends that.
    void FailOn(const std::string& path, std::int32_t errorNumber) {
        mFailures[Normal(path)] = errorNumber;
    }

    /// Makes `path` a file that exists when checked and is gone (error 53) when used.
    void MakeVanishing(const std::string& path);

    /// From now on `path` cannot be deleted (70).
    void Hold(const std::string& path) { mHeld.insert(Normal(path)); }

    /// Marks a file as hidden. There are no system files.
    void SetHidden(const std::string& path) { mHidden.insert(Normal(path)); }

private:
    static std::string Normal(std::string_view path);
    static std::string ParentOf(const std::string& normalPath);
    void CheckFailure(const std::string& normalPath) const;
    const std::string& Contents(const std::string& path) const;
    std::string& Writable(const std::string& path);

    std::map<std::string, std::string> mFiles;  // by normal path, like all the others
    std::set<std::string> mFolders = {"", "/"};
    std::set<std::string> mVanishing;
    std::set<std::string> mHeld;
    std::set<std::string> mHidden;
    std::map<std::string, std::int32_t> mFailures;
};

}  // namespace vantor
