// Contract of StringTable, in both languages.
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class StringTableContract : public Contract {};
INSTANTIATE_CONTRACT(StringTableContract);

TEST_P(StringTableContract, TextsComeWholeInTheLanguageOfTheInterface) {
    struct Text {
        std::int32_t id;
        const char* english;
        const char* spanish;
    };
    const bool spanish = language == Language::Spanish;
    for (const Text& text : {Text{101, "&OK", "&OK"}, Text{103, "&Cancel", "&Cancelar"},
                             Text{711, "Flash Update Successful", "Actualización flash correcta"}})
        EXPECT_EQ(strings->LoadResString(text.id), spanish ? text.spanish : text.english);
    EXPECT_NE(strings->LoadResString(403).find("©"), std::string::npos);
    EXPECT_GT(strings->LoadResString(1016).size(), 250u) << "cut off";
}

TEST_P(StringTableContract, ANumberOutsideTheTableIsError326) {
    for (const std::int32_t id : {815, 0, -1, 99, 1018, 1999, 65637}) {
        const RuntimeError error = Raised([&] { strings->LoadResString(id); });
        EXPECT_EQ(error.Number(), 326);
        EXPECT_EQ(error.Description(),
                  "Resource with identifier '" + std::to_string(id) + "' not found");
    }
}

}  // namespace vantor::contract
