// Program files for tests. They contain only headers and a version resource.
#pragma once

#include <string>
#include <vector>

namespace vantor {

inline std::string U16(std::size_t value) {
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}
inline std::string U32(std::size_t value) {
    return U16(value & 0xFFFF) + U16(value >> 16);
}
inline std::string Wide(const std::string& text) {
    std::string wide;
    for (const char c : text) wide += std::string{c, '\0'};
    return wide;
}
inline void Align(std::string& bytes) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
}

/// A node of a version block; `words` is the length of a text value, 0 for a binary one.
inline std::string VersionNode(const std::string& key, const std::string& value, std::size_t words,
                               const std::vector<std::string>& children = {}) {
    std::string rest = U16(words != 0 ? words : value.size()) + U16(words != 0 ? 1 : 0) +
                       Wide(key + std::string(1, '\0'));
    rest.insert(0, 2, '\0');
    Align(rest);
    rest += value;
    for (const std::string& child : children) {
        Align(rest);
        rest += child;
    }
    return rest.replace(0, 2, U16(rest.size()));
}

/// One string of a version block, unchanged: the caller adds the terminating NUL.
inline std::string VersionText(const std::string& key, const std::string& value) {
    return VersionNode(key, Wide(value), value.size());
}

/// A version block with `texts` in the string table `key`; `translation` is its translation entry.
inline std::string VersionBlock(const std::vector<std::string>& texts,
                                const std::string& key = "0C0A04E4",
                                const std::string& translation = "\x0A\x0C\xE4\x04") {
    return VersionNode(
        "VS_VERSION_INFO", U32(0xFEEF04BD) + std::string(48, 'f'), 0,
        {VersionNode("StringFileInfo", "", 0, {VersionNode(key, "", 0, texts)}),
         VersionNode("VarFileInfo", "", 0, {VersionNode("Translation", translation, 0)})});
}

/// The smallest program file in which the system finds `block`.
inline std::string ProgramAround(const std::string& block) {
    constexpr std::size_t kSection = 0x200;
    constexpr std::size_t kAddress = 0x3000;
    const auto directory = [](std::size_t id, std::size_t offset) {
        return std::string(12, '\0') + U16(0) + U16(1) + U32(id) + U32(offset);
    };
    const std::string resources = directory(16, 0x80000018) + directory(1, 0x80000030) +
                                  directory(1033, 0x48) + U32(kAddress + 0x58) + U32(block.size()) +
                                  U32(0) + U32(0) + block;
    std::string file = "MZ" + std::string(58, '\0') + U32(0x40) + "PE" + std::string(2, '\0') +
                       U16(0x8664) + U16(1) + std::string(12, '\0') + U16(240) + U16(0x22);
    std::string optional = U16(0x20B) + std::string(126, '\0') + U32(kAddress) + U32(0x1000);
    // Fields that the system requires to map the file.
    optional.replace(32, 8, U32(0x1000) + U32(kSection));
    optional.replace(56, 8, U32(kAddress + 0x10000) + U32(kSection));
    optional.replace(108, 4, U32(16));
    optional.resize(240);
    file += optional + ".rsrc" + std::string(3, '\0') + U32(resources.size()) + U32(kAddress) +
            U32(resources.size()) + U32(kSection) + std::string(12, '\0') + U32(0x40000040);
    file.resize(kSection);
    return file + resources;
}

}  // namespace vantor
