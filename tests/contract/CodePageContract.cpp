// Contract of CodePage (8-bit code page), as stored and scrambled text requires it.
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class CodePageContract : public Contract {};
INSTANTIATE_CONTRACT(CodePageContract);

TEST_P(CodePageContract, EveryByteSurvivesTheWayToTextAndBack) {
    const std::string bytes = AllBytes();
    EXPECT_EQ(codePage->ToAnsi(codePage->FromAnsi(bytes)), bytes);
    for (const char byte : bytes)
        EXPECT_EQ(codePage->ToAnsi(codePage->FromAnsi({&byte, 1})), std::string(1, byte));
}

TEST_P(CodePageContract, TextAndBytesCorrespond) {
    // Euro sign, undefined 0x81, Y and y with diaeresis, o with acute accent.
    EXPECT_EQ(codePage->FromAnsi("A\x80\x81\x9F\xFF\xF3"), "A\u20AC\u0081\u0178\u00FF\u00F3");
    EXPECT_EQ(codePage->ToAnsi("A\u20AC\u0178\u00FF\u00F3"), "A\x80\x9F\xFF\xF3");
    EXPECT_EQ(codePage->ToAnsi("\u4E2D\u0101x"), "??x");
}

TEST_P(CodePageContract, DamagedTextBecomesQuestionMarksAndTheRestStays) {
    for (const std::string damaged :
         {"\x80", "\xFF", "\xC3", "\xE2\x82", "\xC0\x80", "\xED\xA0\x80"}) {
        const std::string ansi = codePage->ToAnsi("a" + damaged + "z");
        EXPECT_EQ(ansi, "a" + std::string(ansi.size() - 2, '?') + "z");
        EXPECT_GT(ansi.size(), 2u);
    }
}

}  // namespace vantor::contract
