// The registry's text form: what is written, and which files are read or refused. The contract
// suite covers the registry calls.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/portable/RegistryHive.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

std::string Exported(std::string_view file) {
    RegistryHive hive;
    const std::size_t damagedLine = hive.Import(file);
    return damagedLine == 0 ? hive.Export() : "damaged in line " + std::to_string(damagedLine);
}

const std::string kKey = "\n[HKEY_CURRENT_USER\\Software\\Vantor]\n";
const std::string kHead = "REGEDIT4\n" + kKey;
const std::string kHead5 = "Windows Registry Editor Version 5.00\r\n" + kKey;

struct Line {
    const char* read;
    const char* written;  // contents of the key afterwards, as lines
};

class ReadLine : public testing::TestWithParam<Line> {};

TEST_P(ReadLine, BecomesTheValue) {
    const auto [read, written] = GetParam();
    const std::string expected = kHead + written + "\"z\"=\"\"\n";
    EXPECT_EQ(Exported(kHead + read + "\n\"z\"=\"\"\n"), expected);
    EXPECT_EQ(Exported(expected), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Sound, ReadLine,
    testing::Values(
        Line{"\"a\"=\"38400\"\r", "\"a\"=\"38400\"\n"}, Line{"  \"a\" = \"x\"  ", "\"a\"=\"x\"\n"},
        Line{"@=\"default\"", "@=\"default\"\n"},
        Line{"\"a\\\"\\\\\"=\"C:\\\\d \\\"q\\\"\"", "\"a\\\"\\\\\"=\"C:\\\\d \\\"q\\\"\"\n"},
        Line{"\"a\"=\"C:\\dir\"", "\"a\"=\"C:\\\\dir\"\n"},
        Line{"\"a\"=\"\xF3\"", "\"a\"=hex(1):f3,00\n"}, Line{"\"a\"=hex(1):41,00", "\"a\"=\"A\"\n"},
        Line{"\"a\"=hex(1):41", "\"a\"=hex(1):41\n"},
        Line{"\"a\"=hex(1):41,00,42,00", "\"a\"=hex(1):41,00,42,00\n"},
        Line{"\"a\"=\"x\r\ny\"", "\"a\"=hex(1):78,0d,0a,79,00\n"},
        Line{"\"a\"=dword:0000FFfe", "\"a\"=dword:0000fffe\n"},
        Line{"\"a\"=dword:1", "\"a\"=dword:00000001\n"},
        Line{"\"a\"=hex(4):01", "\"a\"=hex(4):01\n"}, Line{"\"a\"=hex(0):", "\"a\"=hex(0):\n"},
        Line{"\"a\"=hex(ffffffff):00", "\"a\"=hex(ffffffff):00\n"},
        Line{"\"a\"=hex:", "\"a\"=hex:\n"},
        Line{"\"a\"=hex:01,\\\n  02,03,\\ ; more\r\n  04", "\"a\"=hex:01,02,03,04\n"},
        Line{"\"a\\xf1\"=\"\"", "\"a\\xf1\"=\"\"\n"},
        Line{"\"A\"=\"1\"\n\"a\"=\"2\"", "\"a\"=\"2\"\n"}, Line{"; \"a\"=\"remark\"", ""},
        Line{"\"a\"=\"x;\" ; remark", "\"a\"=\"x;\"\n"},
        Line{"\"a\"=dword:1;remark", "\"a\"=dword:00000001\n"},
        Line{"\"a\"=hex:01 ;\\", "\"a\"=hex:01\n"}));

// Anything that the next write would lose counts as damage: the file must not be changed.
TEST(RegistryText, ALineThatCannotBeHeldStopsTheReading) {
    for (const char* line : {"\"a\"=\"open end\\",
                             "\"a\"=\"x\" y",
                             "\"a",
                             "\"a\"=",
                             "=",
                             "\"a\"=-",
                             "\"a\"=dword:123456789",
                             "\"a\"=dword:12g4",
                             "\"a\"=hex:01,",
                             "\"a\"=hex:001",
                             "\"a\"=hex(x):01",
                             "\"a\"=hex:01,\\",
                             "\"a\\x00b\"=\"\"",
                             "[HKEY_CURRENT_USER\\Soft",
                             "[HKEY_USERS\\Soft]",
                             "[]",
                             "[",
                             "[-HKEY_CURRENT_USER\\Software\\Vantor]",
                             "[HKEY_CURRENT_USER\\a%5cb]",
                             "word"})
        EXPECT_EQ(Exported(kHead + "\"b\"=\"1\"\n" + line + "\n\"c\"=\"2\"\n"), "damaged in line 5")
            << line;
    std::string deep = "REGEDIT4\n[HKEY_CURRENT_USER";
    for (int i = 0; i < 200000; ++i) deep += "\\a";
    for (const std::string& file : {deep + "]\n", "REGEDIT4\n\"a\"=\"of no key\"\n"s})
        EXPECT_EQ(Exported(file), "damaged in line 2");
    for (const std::string& file : {"[HKEY_CURRENT_USER]\n"s, "REGEDIT5\n"s, std::string(9, '\0')})
        EXPECT_EQ(Exported(file), "damaged in line 1");
    EXPECT_EQ(Exported(" \r\n"), "REGEDIT4\n");
    RegistryHive hive;
    EXPECT_EQ(hive.Import(kHead + "\"b\"=\"1\"\nword"), 5u);
    EXPECT_EQ(hive.Export(), "REGEDIT4\n") << "half of a damaged file was taken";
}

TEST(RegistryText, AKeysNameEndsWhereOnlyACommentFollows) {
    const std::string name = "[HKEY_CURRENT_USER\\a%5d;b]\n\"c\"=\"\"\n";
    EXPECT_EQ(Exported("REGEDIT4\n\n" + name), "REGEDIT4\n\n" + name);
    EXPECT_EQ(Exported("REGEDIT4\n[HKEY_CURRENT_USER\\a]b] ; see [c]\n"),
              "REGEDIT4\n\n[HKEY_CURRENT_USER\\a%5db]\n");
}

std::string Utf16(std::string_view ascii, bool highFirst) {
    std::string bytes;
    for (const char c : ascii) {
        // "~" stands for a letter of the code page, "^" for one that it lacks.
        const std::string unit = c == '~' ? "\xAC\x20"s : c == '^' ? "\x34\x12"s : c + "\0"s;
        bytes += highFirst ? std::string{unit[1], unit[0]} : unit;
    }
    return bytes;
}

TEST(RegistryText, BothVersionsAreReadInEveryEncoding) {
    const std::string lines =
        "\"a~\"=\"38400~\" ; ^\r\n\"b\"=hex(2):25,00,ac,20,\\\r\n  00,00\r\n"
        "\"c\"=hex(7):41,00,00,00,00,00\r\n\"d\"=hex(1):e9,00,00,00\r\n\"e\"=hex:ac,20\r\n"
        "\"\\x\"=dword:5\r\n";
    const std::string expected =
        kHead +
        "\"\\\\x\"=dword:00000005\n\"a\\x80\"=hex(1):33,38,34,30,30,80,00\n"
        "\"b\"=hex(2):25,80,00\n\"c\"=hex(7):41,00,00\n\"d\"=hex(1):e9,00\n"
        "\"e\"=hex:ac,20\n";
    const std::string file = kHead5 + lines;
    std::string utf8;
    for (const char c : file) utf8 += c == '~' ? "€"s : c == '^' ? "ሴ"s : std::string(1, c);
    EXPECT_EQ(Exported(Utf16(file, false)), expected);
    EXPECT_EQ(Exported("\xFF\xFE" + Utf16(file, false)), expected);
    EXPECT_EQ(Exported(Utf16(file, true)), expected);
    EXPECT_EQ(Exported("\xFE\xFF" + Utf16(file, true)), expected);
    EXPECT_EQ(Exported(utf8), expected);
    EXPECT_EQ(Exported("\xEF\xBB\xBF" + utf8), expected);
    EXPECT_EQ(Exported("\xFF\xFE" + Utf16(kHead + "\"a\\xf1\"=\"~\"\n", false)),
              kHead + "\"a\\xf1\"=hex(1):80,00\n");
}

TEST(RegistryText, ACharacterThatTheCodePageLacksIsDamage) {
    for (const char* line : {"\"^\"=\"\"", "\"a\"=\"^\"", "\"a\"=hex(1):34,12,00,00",
                             "\"a\"=hex(1):41,00,00", "[HKEY_CURRENT_USER\\^]"})
        EXPECT_EQ(Exported(Utf16(kHead5 + line, false)), "damaged in line 4") << line;
    EXPECT_EQ(Exported(kHead5 + "\"a\"=\"\xF3\"\n"), "damaged in line 4") << "no UTF-8";
}

}  // namespace
}  // namespace vantor
