// Version resources parsed from program files, for systems without a service for it.
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

/// The version block (VS_VERSIONINFO) in the bytes of a program file; empty when there is none or
/// the file is malformed. Points into `program`.
std::string_view VersionBlockIn(std::string_view program);

}  // namespace vantor
