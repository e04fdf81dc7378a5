// Scrambling is part of the stored format: values written by older versions must remain readable.
#include "settings/CEncryption.hpp"

#include <gtest/gtest.h>

#include "support/text/Unicode.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

struct Subject {
    ReportingPlatform platform;
    CEncryption encryption{platform.codePage, platform.files};
    std::string out;
};

const Verbs<Subject> kVerbs = {
    {"password", [](Subject& s, Argument text) { s.encryption.Password = text; }},
    {"long-password",  // of so many characters of two bytes 255
     [](Subject& s, Argument count) {
         s.encryption.Password.clear();
         for (int i = 0; i < std::stoi(count); ++i) s.encryption.Password += "\uffff";
     }},
    {"scramble",
     [](Subject& s, Argument text) {
         s.out += s.platform.codePage.ToAnsi(s.encryption.EncryptStringAscii(text));
     }},
    {"twice",
     [](Subject& s, Argument text) {
         s.out += s.encryption.EncryptStringAscii(s.encryption.EncryptStringAscii(text));
     }},
    {"length",  // of the scrambled text of so many letters, as 8-bit text and as wide text
     [](Subject& s, Argument count) {
         const std::size_t length = std::stoul(count);
         s.out += Row(CharacterCount(s.encryption.EncryptStringAscii(std::string(length, 'a'))),
                      s.encryption.EncryptString(std::u16string(length, u'a')).size(), "");
     }},
    {"wide",
     [](Subject& s, Argument text) {
         const std::u16string wide(text.begin(), text.end());
         for (const char16_t unit : s.encryption.EncryptString(wide))
             s.out += Row(static_cast<unsigned>(unit), "");
     }},
    {"file",  // scrambled onto another, and that onto itself
     [](Subject& s, Argument bytes) {
         s.platform.files.Add("/d/in", bytes);
         s.platform.files.Add("/d/out", std::string(100, 'x'));
         s.encryption.InputFileName = "/d/in";
         s.encryption.OutputFileName = "/d/out";
         s.encryption.EncryptFile();
         s.out += s.platform.files.ReadAll("/d/out") + "|";
         s.encryption.InputFileName = "/d/out";
         s.encryption.EncryptFile();
         s.out += s.platform.files.ReadAll("/d/out");
     }},
    {"unreadable",
     [](Subject& s, Argument) {
         s.platform.files.Add("/d/out", "kept");
         s.encryption.InputFileName = "/d/none";
         s.encryption.OutputFileName = "/d/out";
         s.encryption.EncryptFile();
         s.out += s.platform.files.ReadAll("/d/out");
     }},
};

TEST(CEncryption, TheStoredFormatMustNotChange) {
    ExpectTable("scrambled", kVerbs);
}

}  // namespace
}  // namespace vantor
