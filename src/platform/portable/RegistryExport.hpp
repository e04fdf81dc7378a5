// Export files of the system's registry editor, read whole. RegistryText writes the format.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/portable/RegistryText.hpp"

namespace vantor {

/// A key with the values below its line.
struct ExportedKey {
    RegistryKeyPath path;
    std::vector<RegistryValue> values;
};

struct RegistryExport {
    std::vector<ExportedKey> keys;  ///< in the order of the file; a key may come more than once
    std::size_t damagedLine = 0;    ///< where reading ended, from 1; 0: the whole file was read
};

/// Reads version 4 (REGEDIT4, 8-bit) and version 5 (UTF-16 or UTF-8), with or without a byte order
/// mark. Names, strings and the bytes of `hex(1)`, `hex(2)` and `hex(7)` of version 5 become 8-bit
/// text (code page 1252). Comments and blank lines are skipped; empty text is an empty export.
/// Everything else that cannot be stored counts as damage, so that writing the result loses
/// nothing: an unknown line, a value without key, another root, a character not in the code page.
RegistryExport ReadRegistryExport(std::string_view file);

}  // namespace vantor
