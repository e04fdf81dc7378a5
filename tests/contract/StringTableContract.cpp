// Contract of StringTable, in both languages.
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class StringTableContract : public Contract {};
INSTANTIATE_CONTRACT(StringTableContract);

TEST_P(StringTableContract, TextsComeWholeInTheLanguageOfTheInterface) {
    const char* const table = language == Language::Spanish ? "spanish" : "english";
    ExpectTable(std::string("contract/") + table, [this](const Words& words) {
        std::string text;
        const RuntimeError error =
            Raised([&] { text = strings->LoadResString(std::stoi(words.at(0))); });
        return error.Number() == 0 ? text : Row(error.Number(), error.Description());
    });
}

}  // namespace vantor::contract
