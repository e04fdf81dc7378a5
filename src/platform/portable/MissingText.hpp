// The error for a text number that no row of the string table has.
#pragma once

#include <cstdint>
#include <string>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

inline RuntimeError MissingText(std::int32_t id) {
    return RuntimeError(static_cast<std::int32_t>(ErrorNumber::ResourceNotFound),
                        "Resource with identifier '" + std::to_string(id) + "' not found");
}

}  // namespace vantor
