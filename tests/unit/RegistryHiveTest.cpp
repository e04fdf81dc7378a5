// The registry's text format: what is written, and how files that were edited or damaged are read.
// The contract suite tests the registry calls.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/RegistryHive.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

std::string Exported(std::string_view text) {
    RegistryHive hive;
    hive.Import(text);
    return hive.Export();
}

const std::string kHead = "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Vantor]\n";

struct Line {
    const char* read;
    const char* written;  // contents of the key afterwards, as lines
};

class ReadLine : public testing::TestWithParam<Line> {};

TEST_P(ReadLine, BecomesTheValueOrNothing) {
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
        Line{"\"a\"=dword:0000FFfe", "\"a\"=dword:0000fffe\n"},
        Line{"\"a\"=dword:1", "\"a\"=dword:00000001\n"},
        Line{"\"a\"=hex(4):01", "\"a\"=hex(4):01\n"}, Line{"\"a\"=hex(0):", "\"a\"=hex(0):\n"},
        Line{"\"a\"=hex(ffffffff):00", "\"a\"=hex(ffffffff):00\n"},
        Line{"\"a\"=hex:", "\"a\"=hex:\n"},
        Line{"\"a\"=hex:01,\\\n  02,03,\\\r\n  04", "\"a\"=hex:01,02,03,04\n"},
        Line{"\"a\\xf1\"=\"\"", "\"a\\xf1\"=\"\"\n"},
        Line{"\"A\"=\"1\"\n\"a\"=\"2\"", "\"a\"=\"2\"\n"}));

INSTANTIATE_TEST_SUITE_P(
    Damaged, ReadLine,
    testing::Values(
        Line{"\"a\"=\"open end\\", ""}, Line{"\"a\"=\"x\" y", ""}, Line{"\"a", ""},
        Line{"\"a\"=", ""}, Line{"=", ""}, Line{"\"a\"=-", ""}, Line{"; remark", ""},
        Line{"\"a\"=dword:123456789", ""}, Line{"\"a\"=dword:12g4", ""},
        Line{"\"a\"=hex:01,", ""}, Line{"\"a\"=hex:001", ""}, Line{"\"a\"=hex(x):01", ""},
        // The rest of the list is lost; the value after it must be kept.
        Line{"\"a\"=hex:01,\\", ""}));

TEST(RegistryText, ValuesBelowADamagedKeyLineGoToNoKey) {
    for (const char* line :
         {"[HKEY_CURRENT_USER\\Soft", "[HKEY_NOBODY\\Soft]", "[]", "[",
          "[-HKEY_CURRENT_USER\\Software\\Vantor]", "[HKEY_CURRENT_USER\\a%5cb]"})
        EXPECT_EQ(Exported(kHead + "\"a\"=\"1\"\n" + line + "\n\"a\"=\"2\"\n"),
                  kHead + "\"a\"=\"1\"\n")
            << line;
}

TEST(RegistryText, AKeyOfHugeDepthIsRefusedWithoutHarm) {
    std::string deep = "[HKEY_CURRENT_USER";
    for (int i = 0; i < 200000; ++i) deep += "\\a";
    EXPECT_EQ(Exported(deep + "]\n\"a\"=\"1\"\n"), "REGEDIT4\n");
}

}  // namespace
}  // namespace vantor
