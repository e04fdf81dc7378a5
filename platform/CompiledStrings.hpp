// The text table compiled into the program, for systems without string resources.
// It holds the same rows as the resource script and picks the language once, at construction.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/StringTable.hpp"

namespace vantor {

enum class Language : std::uint8_t { English, Spanish };

/// The interface language that the values of the environment variables LC_ALL, LC_MESSAGES and
/// LANG ask for (empty where unset); the first that is set decides.
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
