// Files and folders by path. Paths are UTF-8; both "\" and "/" separate their parts on every
// system. Only this service handles backslashes on POSIX.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// Entries that `Files::List` returns in addition to regular, visible files.
struct ListFilter {
    bool hidden = false;  ///< hidden files (POSIX: names that begin with a dot)
    bool system = false;  ///< system files (POSIX: none)
};

/// A file being written from its start; closed on destruction. Other readers see written data
/// immediately.
class OutputFile {
public:
    virtual ~OutputFile() = default;

    /// Appends all of `bytes`. Raises the errors of `Files`; how much was written before
    /// the error is unknown.
    virtual void Write(std::string_view bytes) = 0;
};

/// The file system. Used from one thread. Operations raise RuntimeError: 53 no such file,
/// 76 a folder of the path is missing, 70 permission denied, 61 disk full, 75 any other failure.
class Files {
public:
    virtual ~Files() = default;

    /// True when `path` names an existing regular file. False for folders, devices and anything
    /// inaccessible; never raises.
    virtual bool Exists(const std::string& path) const = 0;

    /// True when both paths refer to the same existing file, through any links; never raises.
    virtual bool SameFile(const std::string& path, const std::string& other) const = 0;

    /// Size in bytes. Raises 53 when `path` is not a plain file.
    virtual std::uint64_t Size(const std::string& path) const = 0;

    /// The whole contents, byte for byte.
    std::string ReadAll(const std::string& path) const {
        return ReadStart(path, std::string::npos);
    }

    /// The first `most` bytes, or all if there are fewer.
    virtual std::string ReadStart(const std::string& path, std::size_t most) const = 0;

    /// Replaces the file's contents with `bytes`, creating it when missing. Not atomic.
    virtual void WriteAll(const std::string& path, std::string_view bytes) = 0;

    /// Appends `bytes`, creating the file when missing.
    virtual void Append(const std::string& path, std::string_view bytes) = 0;

    /// Creates the file, or truncates it, and keeps it open for writing. Other processes may read
    /// it meanwhile. The service must outlive the returned object.
    virtual std::unique_ptr<OutputFile> Create(const std::string& path) = 0;

    /// Removes a regular file. Raises 53 when there is none.
    virtual void Delete(const std::string& path) = 0;

    /// Creates the folder `path` and its missing parents; does nothing when it exists.
    virtual void CreateFolders(const std::string& path) = 0;

    /// Names (without folder) of the regular files in `folder` that match `pattern` ("*.gif";
    /// wildcards "*" and "?", case-insensitive), in ascending order. A missing folder gives
    /// an empty list.
    virtual std::vector<std::string> List(const std::string& folder, const std::string& pattern,
                                          ListFilter filter) const = 0;
};

}  // namespace vantor
