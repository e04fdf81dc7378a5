// Conversions between text and numbers, the 8-bit code page, and the scrambling of stored text.
// The first line of the input is the password, the rest is the text.
#include "platform/headless/HeadlessPlatform.hpp"
#include "settings/CEncryption.hpp"
#include "support/Conversions.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {
namespace {

void Convert(std::string_view text) {
    double number = 0;
    const bool isNumber = Accepts([&] { number = ToDouble(text); });
    if (isNumber) Require(IsNumeric(text));
    bool yes = false;
    if (Accepts([&] { yes = ToBool(text); })) Require(!isNumber || yes == (number != 0));
    std::int32_t whole = 0;
    if (Accepts([&] { whole = ToInt32(text); })) {
        Require(isNumber && std::abs(whole - number) <= 0.5);
        Require(ToInt32(std::to_string(whole)) == whole && ToInt32(TwoDigits(whole)) == whole);
    }
    if (isNumber && TrimBlanks(text).front() != '&') Require(LeadingNumber(text) == number);
    const std::size_t width = text.size() % 7;
    const std::string field = FixedWidth(text, width);
    Require(CharacterCount(field) == width && FixedWidth(field, width) == field);
}

void Scramble(const std::string& password, std::string_view bytes) {
    static ReportingPlatform headless;
    const std::string text = headless.codePage.FromAnsi(bytes);
    Require(headless.codePage.ToAnsi(text) == bytes);
    CEncryption encryption(headless.codePage, headless.files);
    encryption.Password = password;
    headless.boxes.shown.clear();
    const std::string scrambled = encryption.EncryptStringAscii(text);
    if (!headless.boxes.shown.empty()) {
        // Only an empty key or one so long that its positions overflow may fail.
        Require(scrambled.empty() && (password.empty() || password.size() > 64));
        return;
    }
    Require(encryption.EncryptStringAscii(scrambled) == text);
    std::u16string wide;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        wide += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) << 8 |
                                      static_cast<unsigned char>(bytes[i + 1]));
    Require(encryption.EncryptString(encryption.EncryptString(wide)) == wide ||
            !headless.boxes.shown.empty());
}

}  // namespace

std::vector<std::string> Seeds() {
    return {"KORBENAL\n&HFFff", "V4Mk3\n -1.5e3 ", "\xC3\xA9\nTrue", "p\n&O17",
            std::string(80, 'k') + "\n" + std::string(200, 'z')};
}

void Fuzz(std::string_view input) {
    Convert(input);
    const std::string password(TakeLine(input));
    Convert(input);
    Scramble(password, input);
}

}  // namespace vantor
