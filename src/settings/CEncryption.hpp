// Scrambling of stored text: hides a password from casual view. Not secure encryption.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vantor {

class CodePage;
class Files;

/// XORs each byte with a running key derived from the password; the same call scrambles and
/// unscrambles. An error is shown once, in a box titled with the procedure name, and ends the call
/// (the string functions return an empty string).
class CEncryption {
public:
    CEncryption(const CodePage& codePage, Files& files);

    std::string InputFileName;
    std::string OutputFileName;
    /// Source of the key, UTF-8; its UTF-16 bytes are the key.
    std::string Password;

    /// Scrambles InputFileName into OutputFileName, replacing that file.
    void EncryptFile();

    /// Scrambles the UTF-16 bytes of `text`.
    std::u16string EncryptString(const std::u16string& text);

    /// Scrambles `text` (UTF-8) as bytes of the ANSI code page. The result is UTF-8 and may hold
    /// any character of that page, NUL included.
    std::string EncryptStringAscii(const std::string& text);

private:
    // Each returns false when an error was shown; the caller then ends without a result.
    bool EncryptAll(std::string& bytes);
    bool EncryptByte(char& byte);
    bool ReadFile(const std::string& name, std::string& bytes);

    void TakeKey();

    const CodePage& mCodePage;
    Files& mFiles;
    std::vector<std::uint8_t> mKey;
    std::size_t mPosition = 0;
};

}  // namespace vantor
