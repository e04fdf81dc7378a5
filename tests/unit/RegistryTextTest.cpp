// The registry's text form: what is written, and which files are read or refused. The contract
// suite covers the registry calls.
#include <gtest/gtest.h>

#include "platform/portable/RegistryHive.hpp"
#include "support/text/Unicode.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

const std::string kHead = "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Vantor]\n";

std::string Utf16(const std::string& text, bool highFirst) {
    std::string bytes;
    for (const char16_t unit : Utf16FromUtf8(text)) {
        const auto low = static_cast<char>(unit & 0xffu);
        const auto high = static_cast<char>(unit >> 8u);
        bytes += highFirst ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
}

/// The file of a `form`: "file" is `lines` alone; else a version, "4" or "5", then the order of the
/// bytes in UTF-16, "-low" or "-high" first, and "-mark" for a byte order mark.
std::string FileOf(const std::string& form, const std::string& lines) {
    if (form == "file") return lines;
    std::string text = form.ends_with("-mark") ? "\uFEFF" : "";
    text += form.starts_with('5') ? "Windows Registry Editor Version 5.00\r\n" + kHead.substr(9)
                                  : kHead;
    text += lines;
    const bool highFirst = form.find("-high") != std::string::npos;
    return highFirst || form.find("-low") != std::string::npos ? Utf16(text, highFirst) : text;
}

/// What is written after `file` has been read, without the head if it is the usual one.
std::string Exported(const std::string& file) {
    RegistryHive hive;
    const std::size_t damagedLine = hive.Import(file);
    const std::string text = hive.Export();
    // Anything that the next write would lose counts as damage: the file must not be changed.
    if (damagedLine != 0) return Row(text == "REGEDIT4\n" ? "damaged" : "half taken", damagedLine);
    RegistryHive again;
    if (again.Import(text) != 0 || again.Export() != text) return "not read back: " + text;
    return text.starts_with(kHead) ? text.substr(kHead.size()) : text;
}

TEST(RegistryText, IsReadAndWrittenAsTheTableSays) {
    ExpectTable("registry", [](const Words& words) {
        std::string result;
        for (std::size_t i = 0; i + 1 < words.size(); ++i) {
            const std::string each = Exported(FileOf(words[i], words.back()));
            if (each != result) result += each;
        }
        return result;
    });
    std::string deep = "REGEDIT4\n[HKEY_CURRENT_USER";
    for (int i = 0; i < 200000; ++i) deep += "\\a";
    EXPECT_EQ(Exported(deep + "]\n"), "damaged 2");
}

}  // namespace
}  // namespace vantor
