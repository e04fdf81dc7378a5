#include "settings/CEncryption.hpp"

#include "platform/CodePage.hpp"
#include "platform/Files.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

/// UTF-8 to UTF-16 units, each as two little-endian bytes; invalid UTF-8 becomes U+FFFD.
std::vector<std::uint8_t> WideBytes(std::string_view utf8) {
    std::vector<std::uint8_t> bytes;
    for (const char16_t unit : Utf16FromUtf8(utf8)) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xffu));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8u));
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
    mKey = WideBytes(Password);
    mPosition = 0;
}

bool CEncryption::EncryptByte(std::uint8_t& byte) {
    return Boxed("EncryptByte", [&] {
        // An empty password has no key byte.
        std::uint8_t& key = mKey.at(static_cast<std::size_t>(mPosition));
        byte ^= key;
        byte ^= static_cast<std::uint8_t>(Product16(key, mPosition) % 256);
        const auto last = static_cast<std::int16_t>(mKey.size() - 1);
        // Past the end the key continues at index 1: index 0 is used for the first byte only.
        const std::int16_t next =
            mPosition >= last ? std::int16_t{1} : static_cast<std::int16_t>(mPosition + 1);
        key = static_cast<std::uint8_t>(mKey[static_cast<std::size_t>(next)] + key);
        mPosition = next;
    });
}

bool CEncryption::EncryptAll(std::string& bytes) {
    for (char& c : bytes) {
        auto byte = static_cast<std::uint8_t>(c);
        if (!EncryptByte(byte)) return false;
        c = static_cast<char>(byte);
    }
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
        std::string bytes;
        for (const char16_t unit : text) {
            bytes += static_cast<char>(unit & 0xffu);
            bytes += static_cast<char>(unit >> 8);
        }
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
