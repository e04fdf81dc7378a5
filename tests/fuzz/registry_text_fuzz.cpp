// Text form of the registry, including damaged and hand-edited files.
#include <algorithm>

#include "platform/portable/RegistryHive.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {

std::vector<std::string> Seeds() {
    std::string wide;
    for (const char c : std::string_view("Windows Registry Editor Version 5.00\r\n\r\n"
                                         "[HKEY_CURRENT_USER\\a] ; b\r\n\"c\"=hex(7):41,00,\\\r\n"
                                         "  00,00\r\n\"d\"=\"e\"\r\n"))
        wide += {c, '\0'};
    return {
        "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\a%f3]\n@=\"x\"\n\"a\\xf1\"=dword:0000FFfe\n"
        "\"b\\\"\\\\\"=\"C:\\\\d \\\"q\\\"\"\n\"c\"=hex(1):41,00\n\"d\"=hex:01,\\\n  02,03\n",
        "REGEDIT4\n[HKEY_LOCAL_MACHINE]\n\"A\"=hex(ffffffff):\n\"a\"=\"C:\\dir\" ; remark\n",
        "\xFF\xFE" + wide, wide};
}

void Fuzz(std::string_view input) {
    RegistryHive hive;
    const bool read = hive.Import(input) == 0;
    const std::string written = hive.Export();
    Require(read || written == RegistryHive().Export());
    Require(
        std::ranges::all_of(written, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
    // What is written is read back the same, over the same contents as well as into an empty store.
    Require(hive.Import(written) == 0 && hive.Export() == written);
    RegistryHive other;
    Require(other.Import(written) == 0 && other.Export() == written);
}

}  // namespace vantor
