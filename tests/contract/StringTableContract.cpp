// Contract of StringTable, in both languages.
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

using StringTableContract = Contract<StringsSubject>;

TEST_P(StringTableContract, TextsComeInTheLanguageOfTheInterface) {
    struct Text {
        std::int32_t id;
        const char* english;
        const char* spanish;
    };
    const bool spanish = subject->Expected() == Language::Spanish;
    for (const Text& text : {Text{101, "&OK", "&OK"}, Text{103, "&Cancel", "&Cancelar"},
                             Text{711, "Flash Update Successful", "Actualización flash correcta"}})
        EXPECT_EQ(subject->Get().LoadResString(text.id), spanish ? text.spanish : text.english);
}

TEST_P(StringTableContract, LongAndNonAsciiTextsComeWhole) {
    const std::string text = subject->Get().LoadResString(403);
    EXPECT_NE(text.find("©"), std::string::npos);
    EXPECT_GT(subject->Get().LoadResString(1016).size(), 250u);
}

TEST_P(StringTableContract, ANumberOutsideTheTableIsError326) {
    for (const std::int32_t id : {815, 0, -1, 99, 1018, 1999, 65637}) {
        std::string told;
        try {
            subject->Get().LoadResString(id);
        } catch (const RuntimeError& error) {
            told = std::to_string(error.Number()) + " " + error.Description();
        }
        EXPECT_EQ(told, "326 Resource with identifier '" + std::to_string(id) + "' not found");
    }
}

INSTANTIATE_CONTRACT(StringTableContract, HeadlessStringTables, NativeStringTables);

}  // namespace vantor::contract
