// The registry's text form, as accidents and people can have changed the file.
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
    // What is written is read back the same, over the same contents as well as into an empty store.
    hive.Import(written);
    Require(hive.Export() == written);
    RegistryHive other;
    other.Import(written);
    Require(other.Export() == written);
    // A file that was cut off keeps its whole lines, whatever follows them.
    other.Import("\n\n[HKEY_CURRENT_USER\\z]\n\"z\"=\"z\"\n");
    RegistryKey key = 0;
    Require(other.OpenKey(RegistryRoot::CurrentUser, "Z", kRegistryQueryValue, key) ==
            kRegistrySuccess);
}

}  // namespace vantor
