#include "dialogs/CVersionInfo.hpp"

#include <array>
#include <cstdint>
#include <cstdio>

#include "support/Conversions.hpp"
#include "support/text/Text.hpp"

namespace vantor {

std::string CVersionInfo::FileVersion(const std::string& path) {
    std::string unknown = mStrings.Text(Str::UnknownVersion);
    if (!ReadBlock(path)) return unknown;
    std::string version = TrimNulls(GetInfoBlock("ProductVersion"));
    // Read but not used: the file version is the result, even when it is empty.
    version = TrimNulls(GetInfoBlock("FileVersion"));
    version = TrimBlanks(version);
    return version.empty() ? unknown : version;
}

bool CVersionInfo::ReadBlock(const std::string& path) {
    mBlock.assign(mVersions.BlockSize(path), '\0');
    if (mBlock.empty() || !mVersions.ReadBlock(path, mBlock)) return false;
    std::uint16_t language = 0;
    std::uint16_t codePage = 0;
    mTranslation.clear();
    if (!mVersions.QueryTranslation(mBlock, language, codePage)) return true;
    std::array<char, 9> key{};
    std::snprintf(key.data(), key.size(), "%04X%04X", unsigned{language}, unsigned{codePage});
    mTranslation = key.data();
    return true;
}

std::string CVersionInfo::GetInfoBlock(const std::string& name) const {
    std::string value;
    mVersions.QueryString(mBlock, "\\StringFileInfo\\" + mTranslation + "\\" + name, value);
    return value;
}

std::string CVersionInfo::TrimNulls(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

}  // namespace vantor
