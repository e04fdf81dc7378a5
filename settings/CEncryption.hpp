// Scrambling of stored texts: keeps a password out of plain sight, and is no more than that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

class CodePage;
class Files;

/// Combines each byte by exclusive-or with a running key taken from the password; the same call
/// scrambles and unscrambles. An error is shown once, in the class's own box titled
/// with the procedure, and ends the call (the string forms return empty text).
class CEncryption {
public:
    CEncryption(const CodePage& codePage, Files& files);

    std::string InputFileName;
    std::string OutputFileName;
    /// The key's source, UTF-8; its wide-character bytes are the key.
    std::string Password;

    /// Scrambles InputFileName into OutputFileName, replacing that file.
    void EncryptFile();

    /// Scrambles the wide-character bytes of `text`.
    std::u16string EncryptString(const std::u16string& text);

    /// Scrambles `text` (UTF-8) as bytes of the system's 8-bit code page; the result, UTF-8 of
    /// the scrambled bytes, may hold any character of that page, NUL included.
    std::string EncryptStringAscii(const std::string& text);

private:
    // Each is false when an error was shown; the caller then ends without a result.
    bool EncryptAll(std::string& bytes);
    bool EncryptByte(std::uint8_t& byte);
    bool ReadFile(const std::string& name, std::string& bytes);

    void TakeKey();

    const CodePage& mCodePage;
    Files& mFiles;
    std::vector<std::uint8_t> mKey;
    std::int16_t mPosition = 0;
};

}  // namespace vantor
