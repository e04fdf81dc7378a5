// Every user-visible text, by number, in the user's interface language.
#pragma once

#include <cstdint>
#include <string>

#include "resources/texts/Str.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

class StringTable {
public:
    virtual ~StringTable() = default;

    /// The text `id` as UTF-8 (Windows: LoadStringW on the program's two-language STRINGTABLE):
    /// Spanish when that is the user's interface language, English otherwise. Nothing is cached.
    /// Raises MissingText for a number that is not in the table.
    virtual std::string LoadResString(std::int32_t id) const = 0;

    /// The same by name.
    std::string Text(Str text) const { return LoadResString(static_cast<std::int32_t>(text)); }
};

/// RuntimeError 326: no row of the string table has the number `id`.
inline RuntimeError MissingText(std::int32_t id) {
    return RuntimeError(static_cast<std::int32_t>(ErrorNumber::ResourceNotFound),
                        "Resource with identifier '" + std::to_string(id) + "' not found");
}

}  // namespace vantor
