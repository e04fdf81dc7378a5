// Files and folders by path. Paths are UTF-8 and may be written with "\" or "/" between their
// parts on every system: this service alone knows what a backslash means off Windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// Which entries `Files::List` leaves in beside plain, visible files.
struct ListFilter {
    bool hidden = false;  ///< hidden files too (off Windows: names that begin with a point)
    bool system = false;  ///< system files too (off Windows there are none)
};

/// A file being written from its start on; closed when destroyed. What a `Write` has taken can be
/// read by others at once.
class OutputFile {
public:
    virtual ~OutputFile() = default;

    /// Adds all of `bytes` at the end. Raises what the operations of `Files` do; how much was
    /// written by then is not known.
    virtual void Write(std::string_view bytes) = 0;
};

/// The file system. Used from one thread. Operations raise RuntimeError:
/// 53 no such file, 76 no such folder on the way, 70 permission denied, 61 disk full,
/// 75 anything else that the system refuses.
class Files {
public:
    virtual ~Files() = default;

    /// True when `path` names an existing plain file. Folders, devices and anything that
    /// cannot be looked at count as false; never raises.
    virtual bool Exists(const std::string& path) const = 0;

    /// True when both paths lead to one existing file, by whatever names or links; never raises.
    virtual bool SameFile(const std::string& path, const std::string& other) const = 0;

    /// Size in bytes. Raises 53 when `path` is not a plain file.
    virtual std::uint64_t Size(const std::string& path) const = 0;

    /// The whole contents, byte for byte.
    std::string ReadAll(const std::string& path) const {
        return ReadStart(path, std::string::npos);
    }

    /// The first `most` bytes, or all where there are fewer.
    virtual std::string ReadStart(const std::string& path, std::size_t most) const = 0;

    /// Replaces the file by `bytes`, creating it when missing. Not atomic.
    virtual void WriteAll(const std::string& path, std::string_view bytes) = 0;

    /// Adds `bytes` at the end, creating the file when missing.
    virtual void Append(const std::string& path, std::string_view bytes) = 0;

    /// Replaces the file by an empty one, creating it when missing, and keeps it open for writing.
    /// Others may read it meanwhile. The service must outlive what it returns.
    virtual std::unique_ptr<OutputFile> Create(const std::string& path) = 0;

    /// Removes a plain file. Raises 53 when there is none.
    virtual void Delete(const std::string& path) = 0;

    /// Creates the folder `path` and those above it; does nothing when it exists.
    virtual void CreateFolders(const std::string& path) = 0;

    /// Names (no folder part) of the plain files in `folder` whose name matches `pattern`
    /// ("*.gif"; "*" and "?" as wild cards, letter case ignored), in ascending order.
    /// A missing folder gives an empty list.
    virtual std::vector<std::string> List(const std::string& folder, const std::string& pattern,
                                          ListFilter filter) const = 0;
};

}  // namespace vantor
