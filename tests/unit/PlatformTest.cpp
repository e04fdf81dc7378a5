// Small portable parts below the services: the choice of the language and file name patterns.
#include <gtest/gtest.h>

#include "platform/CompiledStrings.hpp"
#include "platform/WildCards.hpp"

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

TEST(MatchesPattern, FollowsTheWildCards) {
    struct Case {
        const char* name;
        const char* pattern;
        bool matches;
    };
    for (const Case& c : {Case{"a.gif", "*.GIF", true}, Case{"a.gif.txt", "*.gif", false},
                          Case{"aXbXc", "a*X?", true}, Case{"abab", "*ab", true},
                          Case{"abac", "*ab", false}, Case{"", "*", true}, Case{"", "?", false},
                          Case{"a", "", false}, Case{"plain", "*.*", true}, Case{"ñ1", "?1", true},
                          Case{"ñ", "??", false}, Case{"a", "a**", true}})
        EXPECT_EQ(MatchesPattern(c.name, c.pattern), c.matches) << c.name << ' ' << c.pattern;
}

}  // namespace
}  // namespace vantor
