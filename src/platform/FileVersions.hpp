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
    /// is missing or has none.
    virtual std::uint32_t BlockSize(const std::string& path) const = 0;

    /// Fills `block`, which the caller sizes to `BlockSize`, with the version block of `path`
    /// (GetFileVersionInfo). False on failure.
    virtual bool ReadBlock(const std::string& path, std::vector<char>& block) const = 0;

    /// The first translation in `block`: language and code page (VerQueryValue of
    /// "\VarFileInfo\Translation"). False when there is none.
    virtual bool QueryTranslation(const std::vector<char>& block, std::uint16_t& language,
                                  std::uint16_t& codePage) const = 0;

    /// Looks up `subBlock` ("\StringFileInfo\040904E4\FileVersion") in `block` (VerQueryValue) and
    /// sets `value` to the string, its terminating or padding NULs included. False when not found;
    /// `value` is then unchanged.
    virtual bool QueryString(const std::vector<char>& block, const std::string& subBlock,
                             std::string& value) const = 0;
};

}  // namespace vantor
