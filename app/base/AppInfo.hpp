// What the program knows about itself.
#pragma once

#include <cstdint>
#include <string>

#include "resources/Version.h"

namespace vantor {

/// The application's own version data, as stamped into the build. The title and the company are
/// parts of the registry path, so they never change.
struct AppInfo {
    std::string title = VANTOR_TITLE;
    std::string companyName = VANTOR_COMPANY;
    std::string productName = VANTOR_PRODUCT;
    std::int32_t major = VANTOR_MAJOR;
    std::int32_t minor = VANTOR_MINOR;
    std::int32_t revision = VANTOR_REVISION;
};

}  // namespace vantor
