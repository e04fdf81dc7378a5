#include "settings/CEncryption.hpp"

#include "platform/CodePage.hpp"
#include "platform/Files.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

/// Each unit as two bytes, the low one first.
std::string WideBytes(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xffu);
        bytes += static_cast<char>(unit >> 8u);
    }
    return bytes;
}

std::int16_t Product16(std::int32_t a, std::int32_t b) {
    return ToInt16(static_cast<double>(CheckedMultiply(a, b)));
}

}  // namespace

CEncryption::CEncryption(const CodePage& codePage, Files& files)
    : mCodePage(codePage), mFiles(files) {
    BoxedSetup("Morvane.CEncryption.Class_Initialize", [this] { Password = "KORBENAL"; });
}

void CEncryption::TakeKey() {
    const std::string bytes = WideBytes(Utf16FromUtf8(Password));
    mKey.assign(bytes.begin(), bytes.end());
    mPosition = 0;
}

bool CEncryption::EncryptByte(char& byte) {
    return Boxed("EncryptByte", [&] {
        // An empty password has no key byte.
        std::uint8_t& key = mKey.at(mPosition);
        const int product = Product16(key, static_cast<int>(mPosition));
        byte = static_cast<char>(static_cast<std::uint8_t>(byte) ^ key ^ (product % 256));
        // Past the end the key continues at index 1: index 0 is used for the first byte only.
        mPosition = mPosition + 1 < mKey.size() ? mPosition + 1 : 1;
        key = static_cast<std::uint8_t>(mKey.at(mPosition) + key);
    });
}

bool CEncryption::EncryptAll(std::string& bytes) {
    for (char& byte : bytes)
        if (!EncryptByte(byte)) return false;
    return true;
}

std::string CEncryption::EncryptStringAscii(const std::string& text) {
    if (text.empty()) return {};
    std::string result;
    Boxed("EncryptStringAscii", [&] {
        TakeKey();
        std::string bytes = mCodePage.ToAnsi(text);
        if (EncryptAll(bytes)) result = mCodePage.FromAnsi(bytes);
    });
    return result;
}

std::u16string CEncryption::EncryptString(const std::u16string& text) {
    if (text.empty()) return {};
    std::u16string result;
    Boxed("EncryptString", [&] {
        TakeKey();
        std::string bytes = WideBytes(text);
        if (!EncryptAll(bytes)) return;
        for (std::size_t i = 0; i < bytes.size(); i += 2)
            result += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                            static_cast<unsigned char>(bytes[i + 1]) << 8);
    });
    return result;
}

// The input is read before the output is opened: an unreadable input does not destroy the output,
// and a file can be scrambled in place.
void CEncryption::EncryptFile() {
    Boxed("EncryptFile", [&] {
        TakeKey();
        std::string bytes;
        if (!ReadFile(InputFileName, bytes) || !EncryptAll(bytes)) return;
        if (mFiles.Exists(OutputFileName)) mFiles.Delete(OutputFileName);
        mFiles.WriteAll(OutputFileName, bytes);
    });
}

bool CEncryption::ReadFile(const std::string& name, std::string& bytes) {
    return Boxed("ReadFile", [&] { bytes = mFiles.ReadAll(name); });
}

}  // namespace vantor
