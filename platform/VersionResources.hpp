// Version resources read from the bytes of program files, where no system service does it.
#pragma once

#include <string_view>

#include "platform/FileVersions.hpp"
#include "platform/Files.hpp"

namespace vantor {

class VersionResources : public FileVersions {
public:
    /// `files` must outlive this object.
    explicit VersionResources(const Files& files) : mFiles(files) {}

    std::uint32_t BlockSize(const std::string& path) const override;
    bool ReadBlock(const std::string& path, std::vector<char>& block) const override;
    bool QueryTranslation(const std::vector<char>& block, std::uint16_t& language,
                          std::uint16_t& codePage) const override;
    bool QueryString(const std::vector<char>& block, const std::string& subBlock,
                     std::string& value) const override;

private:
    std::string BlockOf(const std::string& path) const;

    const Files& mFiles;
};

/// The version block (VS_VERSIONINFO) inside the bytes of a program file; empty when there is
/// none, or when the file is broken. Points into `program`.
std::string_view VersionBlockIn(std::string_view program);

}  // namespace vantor
