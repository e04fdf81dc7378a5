#include "content/PictureFiles.hpp"

#include <functional>

#include "app/base/modSupport.hpp"
#include "support/Conversions.hpp"

namespace vantor {
namespace {

// The sibling program that fills the folder writes lower-case names; the dot is not checked.
bool IsPictureName(const std::string& name) {
    return name.size() > 3 &&
           (name.ends_with("gif") || name.ends_with("jpg") || name.ends_with("bmp"));
}

}  // namespace

std::int16_t PictureFilesToArray(const Files& files, const std::string& folder, bool includeHidden,
                                 bool includeSystem, std::vector<std::string>& names) {
    names =
        files.List(AddFinalSlash(folder), "*", {.hidden = includeHidden, .system = includeSystem});
    std::erase_if(names, std::not_fn(IsPictureName));
    return ToInt16(static_cast<double>(names.size()));
}

}  // namespace vantor
