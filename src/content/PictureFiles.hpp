// Lists the pictures of a folder.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Files.hpp"

namespace vantor {

/// Fills `names` with the names (without folder) of the picture files in `folder`,
/// in listing order, and returns their number. Tests only the last three characters of a name:
/// "gif", "jpg" or "bmp", in lower case. Raises RuntimeError 6 beyond 32767 pictures.
std::int16_t PictureFilesToArray(const Files& files, const std::string& folder, bool includeHidden,
                                 bool includeSystem, std::vector<std::string>& names);

}  // namespace vantor
