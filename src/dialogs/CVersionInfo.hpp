// The version of a program file, from its version resource.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/FileVersions.hpp"
#include "platform/StringTable.hpp"

namespace vantor {

class CVersionInfo {
public:
    /// Both must outlive this object.
    CVersionInfo(const FileVersions& versions, const StringTable& strings)
        : mVersions(versions), mStrings(strings) {}

    /// The `FileVersion` text of `path`, trimmed; the string "Unknown" when the file
    /// is missing or has no version.
    std::string FileVersion(const std::string& path);

    /// The version string `name` in the block read last; empty when not found.
    std::string GetInfoBlock(const std::string& name) const;

    /// `text` up to its first NUL.
    static std::string TrimNulls(std::string_view text);

private:
    bool ReadBlock(const std::string& path);

    const FileVersions& mVersions;
    const StringTable& mStrings;
    std::vector<char> mBlock;
    std::string mTranslation;  // language and code page, four upper-case hexadecimal digits each
};

}  // namespace vantor
