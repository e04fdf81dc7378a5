// The system's 8-bit code page: where stored bytes and scrambling are defined on it.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

/// Conversion between UTF-8 text and the system's 8-bit code page (CP_ACP; code page 1252 off
/// Windows). Lossless from bytes to text and back for all 256 byte values of code page 1252,
/// 0 included. Never raises.
class CodePage {
public:
    virtual ~CodePage() = default;

    /// UTF-8 to 8-bit text (WideCharToMultiByte). What the code page lacks becomes "?".
    virtual std::string ToAnsi(std::string_view utf8) const = 0;

    /// 8-bit text to UTF-8 (MultiByteToWideChar).
    virtual std::string FromAnsi(std::string_view ansi) const = 0;
};

}  // namespace vantor
