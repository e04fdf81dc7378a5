// Small portable parts below the services: the choice of the language, file name patterns, and
// the faults that the file system in memory plays.
#include <gtest/gtest.h>

#include "platform/CompiledStrings.hpp"
#include "platform/WildCards.hpp"
#include "tests/unit/ReportingPlatform.hpp"

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

TEST(HeadlessFiles, PlaysTheFaultsItIsToldTo) {
    HeadlessFiles files;
    files.Add("C:\\fw\\image.s19", "S0");
    files.FailOn("C:/fw/image.s19", 70);
    EXPECT_EQ(Raised([&] { files.ReadAll("C:\\fw\\image.s19"); }).Number(), 70);
    EXPECT_EQ(Raised([&] { files.WriteAll("C:\\fw\\image.s19", ""); }).Number(), 70);
    files.FailOn("C:\\fw\\image.s19", 0);
    EXPECT_EQ(files.ReadAll("C:\\fw\\image.s19"), "S0");
    files.MakeVanishing("C:\\fw\\image.s19");
    EXPECT_TRUE(files.Exists("C:/fw/image.s19"));
    EXPECT_EQ(Raised([&] { files.ReadAll("C:/fw/image.s19"); }).Number(), 53);
    EXPECT_FALSE(files.Exists("C:/FW/image.s19")) << "letter case counts here";
}

}  // namespace
}  // namespace vantor
