// The pictures of a folder.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Files.hpp"

namespace vantor {

/// Fills `names` with the bare names of the picture files in `folder`, in the order of the
/// listing, and returns their number. A picture is told by the last three characters of its name
/// alone: "gif", "jpg" or "bmp", in lower case. Raises RuntimeError 6 beyond 32767 pictures.
std::int16_t PictureFilesToArray(const Files& files, const std::string& folder, bool includeHidden,
                                 bool includeSystem, std::vector<std::string>& names);

}  // namespace vantor
