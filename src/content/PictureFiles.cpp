#include "content/PictureFiles.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include "app/base/modSupport.hpp"
#include "support/Conversions.hpp"

namespace vantor {
namespace {

// The sibling program that fills the folder writes lower-case names; the dot is not checked.
bool IsPictureName(std::string_view name) {
    constexpr std::array<std::string_view, 3> kEndings = {"gif", "jpg", "bmp"};
    return name.size() > 3 &&
           std::ranges::find(kEndings, name.substr(name.size() - 3)) != kEndings.end();
}

}  // namespace

std::int16_t PictureFilesToArray(const Files& files, const std::string& folder, bool includeHidden,
                                 bool includeSystem, std::vector<std::string>& names) {
    names =
        files.List(AddFinalSlash(folder), "*", {.hidden = includeHidden, .system = includeSystem});
    std::erase_if(names, [](const std::string& name) { return !IsPictureName(name); });
    return ToInt16(static_cast<double>(names.size()));
}

}  // namespace vantor
