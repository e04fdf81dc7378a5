// The system's 8-bit (ANSI) code page, in which stored bytes and scrambled values are defined.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

/// Converts between UTF-8 and the ANSI code page (CP_ACP; code page 1252 on POSIX). All 256 byte
/// values of code page 1252, 0 included, survive the round trip through UTF-8. Never raises.
class CodePage {
public:
    virtual ~CodePage() = default;

    /// UTF-8 to 8-bit text (WideCharToMultiByte). Unmappable characters become "?".
    virtual std::string ToAnsi(std::string_view utf8) const = 0;

    /// 8-bit text to UTF-8 (MultiByteToWideChar).
    virtual std::string FromAnsi(std::string_view ansi) const = 0;
};

}  // namespace vantor
