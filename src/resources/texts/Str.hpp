// Names for the rows of the string table.
#pragma once

#include <cstdint>

namespace vantor {

/// A text of the string table by name. The value is the number of its row.
enum class Str : std::int32_t {
    None = 0,
// NOLINTNEXTLINE(bugprone-macro-parentheses): it is a name that is declared
#define STRING(id, identifier, english, spanish) identifier = id,
#include "resources/texts/OwnTexts.def"
#include "resources/texts/Strings.def"
#undef STRING
};

}  // namespace vantor
