// Text form of the registry, including damaged and hand-edited files.
#include <algorithm>

#include "platform/RegistryHive.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {

std::vector<std::string> Seeds() {
    return {
        "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\a%f3]\n@=\"x\"\n\"a\\xf1\"=dword:0000FFfe\n"
        "\"b\\\"\\\\\"=\"C:\\\\d \\\"q\\\"\"\n\"c\"=hex(1):41,00\n\"d\"=hex:01,\\\n  02,03\n",
        "[HKEY_LOCAL_MACHINE]\n\"A\"=hex(ffffffff):\n\"a\"=\"C:\\dir\"\n"};
}

void Fuzz(std::string_view input) {
    RegistryHive hive;
    hive.Import(input);
    const std::string written = hive.Export();
    Require(
        std::ranges::all_of(written, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
    // Import of an export is idempotent, both over the same contents and into an empty hive.
    hive.Import(written);
    Require(hive.Export() == written);
    RegistryHive other;
    other.Import(written);
    Require(other.Export() == written);
    // A later import still adds its keys.
    other.Import("\n\n[HKEY_CURRENT_USER\\z]\n\"z\"=\"z\"\n");
    RegistryKey key = 0;
    Require(other.OpenKey(RegistryRoot::CurrentUser, "Z", kRegistryQueryValue, key) ==
            kRegistrySuccess);
}

}  // namespace vantor
