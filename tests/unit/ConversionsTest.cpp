// The rules for converting text to numbers, on which stored settings and window designs rely.
#include "support/Conversions.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "support/text/Unicode.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

constexpr std::int32_t kOverflow = 6;
constexpr std::int32_t kTypeMismatch = 13;
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

TEST(Conversions, TextBehindALeadingNumberMustNotSpoilIt) {
    // clang-format off
    const std::pair<const char*, double> kCases[] = {
        {"201 &File", 201}, {"  42x", 42}, {"-7.5e1abc", -75}, {"1d2", 100}, {"1e", 1},
        {"1e+", 1}, {".5", .5}, {"5.", 5}, {"1.2.3", 1.2}, {"+3", 3}, {"8080-", 8080}, {"1 2", 1},
        {"", 0}, {"   ", 0}, {"-", 0}, {"&File", 0}, {"x1", 0}, {".", 0}, {"inf", 0}, {"\t5", 0},
    };
    // clang-format on
    for (const auto& [text, number] : kCases) EXPECT_EQ(LeadingNumber(text), number) << text;
    EXPECT_EQ(Raised([] { LeadingNumber("1e999"); }).Number(), kOverflow);
}

TEST(Conversions, OnlyAWholeNumberIsNumeric) {
    // clang-format off
    const std::pair<const char*, double> kNumbers[] = {
        {"38400", 38400}, {" 8 ", 8}, {"-1.5", -1.5}, {"+5", 5}, {".5", .5}, {"5.", 5},
        {"1E3", 1000}, {"1D3", 1000}, {"&H1F", 31}, {"&o17", 15}, {"&HFFFF", -1},
        {"&H10000", 65536}, {"&h80000000", -2147483648.},
    };
    // clang-format on
    for (const auto& [text, number] : kNumbers) {
        EXPECT_TRUE(IsNumeric(text)) << text;
        EXPECT_EQ(ToDouble(text), number) << text;
    }
    for (const char* text : {"", "  ", "12x", "M5", "1 2", "--5", "1e", ".", "1.2.3", "&H", "&HG",
                             "&O8", "&H1FFFFFFFF", "0x10", "nan"}) {
        EXPECT_FALSE(IsNumeric(text)) << text;
        EXPECT_EQ(Raised([&] { ToDouble(text); }).Number(), kTypeMismatch) << text;
    }
}

TEST(Conversions, HalvesAreRoundedToEvenAndTheRangeIsCheckedAfterRounding) {
    const struct {
        double value;
        std::int32_t rounded;
        bool fits16;
        bool fits32;
    } kCases[] = {
        // clang-format off
        {0.5, 0, true, true}, {1.5, 2, true, true}, {2.5, 2, true, true}, {-0.5, 0, true, true},
        {-1.5, -2, true, true}, {-2.5, -2, true, true}, {2.5000001, 3, true, true},
        {32767.4, 32767, true, true}, {32767.5, 32768, false, true},
        {-32768.5, -32768, true, true}, {-32769, -32769, false, true},
        {2147483647.4, kMax, false, true}, {2147483647.5, 0, false, false},
        {-2147483648.5, kMin, false, true}, {-2147483649., 0, false, false},
        {1e300, 0, false, false},
        // clang-format on
    };
    for (const auto& c : kCases) {
        std::int32_t whole = c.rounded;
        EXPECT_EQ(Raised([&] { whole = ToInt32(c.value); }).Is(ErrorNumber::Overflow), !c.fits32);
        EXPECT_EQ(whole, c.rounded) << c.value;
        EXPECT_EQ(Raised([&] { whole = ToInt16(c.value); }).Is(ErrorNumber::Overflow), !c.fits16);
        EXPECT_EQ(whole, c.rounded) << c.value;
    }
    EXPECT_EQ(ToInt16(" 2.5 "), 2);
    EXPECT_EQ(Raised([] { ToInt16("40000"); }).Number(), kOverflow);
    EXPECT_EQ(Raised([] { ToInt32("301 Title"); }).Number(), kTypeMismatch);
}

TEST(Conversions, AStoredBooleanThatIsNoneMustNotReadAsFalse) {
    for (const char* text : {"True", " TRUE ", "-1", "0.2"}) EXPECT_TRUE(ToBool(text)) << text;
    for (const char* text : {"fAlSe", "0", "&H0"}) EXPECT_FALSE(ToBool(text)) << text;
    for (const char* text : {"", "Yes", "Truee", "0x"})
        EXPECT_EQ(Raised([&] { ToBool(text); }).Number(), kTypeMismatch) << text;
    EXPECT_EQ(FromBool(true) + FromBool(false), "TrueFalse");
}

TEST(Conversions, FixedFieldsCountCharactersAndNotBytes) {
    const struct {
        const char* text;
        std::size_t width;
        const char* field;
    } kCases[] = {
        // clang-format off
        {"COM1", 5, "COM1 "}, {"COM123", 5, "COM12"}, {"", 2, "  "}, {"abc", 0, ""},
        {"ñandú", 5, "ñandú"}, {"ñandú", 4, "ñand"}, {"é", 3, "é  "}, {"€€", 1, "€"},
        // clang-format on
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(FixedWidth(c.text, c.width), c.field) << c.text;
        EXPECT_EQ(CharacterCount(FixedWidth(c.text, c.width)), c.width) << c.text;
    }
}

TEST(Conversions, SumsAndProductsBeyond32BitsRaiseRatherThanWrap) {
    EXPECT_EQ(CheckedAdd(kMax - 1, 1), kMax);
    EXPECT_EQ(Raised([] { CheckedAdd(kMax, 1); }).Number(), kOverflow);
    EXPECT_EQ(Raised([] { CheckedAdd(kMin, -1); }).Number(), kOverflow);
    EXPECT_EQ(CheckedMultiply(46340, 46340), 2147395600);
    EXPECT_EQ(Raised([] { CheckedMultiply(46341, 46341); }).Number(), kOverflow);
    EXPECT_EQ(Raised([] { CheckedMultiply(kMin, -1); }).Number(), kOverflow);
}

}  // namespace
}  // namespace vantor
