// Version resources through the Win32 version calls.
#pragma once

#include "platform/FileVersions.hpp"

namespace vantor {

class Win32FileVersions : public FileVersions {
public:
    std::uint32_t BlockSize(const std::string& path) const override;
    bool ReadBlock(const std::string& path, std::vector<char>& block) const override;
    bool QueryTranslation(const std::vector<char>& block, std::uint16_t& language,
                          std::uint16_t& codePage) const override;
    bool QueryString(const std::vector<char>& block, const std::string& subBlock,
                     std::string& value) const override;
};

}  // namespace vantor
