// Selection of the language on systems that only have locales.
#include <gtest/gtest.h>

#include "platform/portable/CompiledStrings.hpp"

namespace vantor {
namespace {

TEST(LanguageOfLocale, TheFirstVariableThatIsSetDecides) {
    struct Case {
        const char* all;
        const char* messages;
        const char* lang;
        Language language;
    };
    for (const Case& c :
         {Case{"", "", "", Language::English}, Case{"", "", "es", Language::Spanish},
          Case{"", "", "es_AR.UTF-8", Language::Spanish},
          Case{"", "", "de_DE.UTF-8", Language::English},
          Case{"", "en_US", "es_ES", Language::English},
          Case{"C", "es_ES", "es_ES", Language::English},
          Case{"es_ES", "en_US", "en_US", Language::Spanish}})
        EXPECT_EQ(LanguageOfLocale(c.all, c.messages, c.lang), c.language)
            << c.all << '/' << c.messages << '/' << c.lang;
}

}  // namespace
}  // namespace vantor
