// The program's identity and version.
#pragma once

#include <cstdint>
#include <string>

#include "resources/Version.h"

namespace vantor {

/// The application's version data from the build. Title and company are parts of the registry path,
/// so they never change.
struct AppInfo {
    std::string title = VANTOR_TITLE;
    std::string companyName = VANTOR_COMPANY;
    std::string productName = VANTOR_PRODUCT;
    std::int32_t major = VANTOR_MAJOR;
    std::int32_t minor = VANTOR_MINOR;
    std::int32_t revision = VANTOR_REVISION;
};

/// The program's key below a root of the registry.
inline constexpr const char* kProgramKey = "SOFTWARE\\" VANTOR_COMPANY "\\" VANTOR_TITLE;

}  // namespace vantor
