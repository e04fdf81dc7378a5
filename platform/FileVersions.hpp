// Version resources of program files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantor {

class FileVersions {
public:
    virtual ~FileVersions() = default;

    /// Size in bytes of the version block of `path` (GetFileVersionInfoSize); 0 when the file
    /// is missing or carries none.
    virtual std::uint32_t BlockSize(const std::string& path) const = 0;

    /// The version block (GetFileVersionInfo); empty on failure.
    virtual std::vector<char> Block(const std::string& path) const = 0;

    /// Looks `subBlock` ("\StringFileInfo\040904E4\FileVersion") up in `block` (VerQueryValue)
    /// and sets `value` to the text found, as stored. False when it is not there.
    virtual bool QueryString(const std::vector<char>& block, const std::string& subBlock,
                             std::string& value) const = 0;
};

}  // namespace vantor
