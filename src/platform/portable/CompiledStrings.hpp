// The string table compiled into the program, for systems without string resources.
// It holds the same rows as the resource script; the language is fixed at construction.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/StringTable.hpp"

namespace vantor {

enum class Language : std::uint8_t { English, Spanish };

/// The interface language for the values of the environment variables LC_ALL, LC_MESSAGES and LANG
/// (empty where unset). The first non-empty one decides.
Language LanguageOfLocale(std::string_view lcAll, std::string_view lcMessages,
                          std::string_view lang);

class CompiledStrings : public StringTable {
public:
    explicit CompiledStrings(Language language) : mLanguage(language) {}

    std::string LoadResString(std::int32_t id) const override;

private:
    Language mLanguage;
};

}  // namespace vantor
