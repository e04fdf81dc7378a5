// The system's own 8-bit code page, whichever it is.
#pragma once

#include "platform/CodePage.hpp"

namespace vantor {

/// Letters that only resemble one of the code page are not taken for it: a stored text would
/// read back as another.
class Win32CodePage : public CodePage {
public:
    std::string ToAnsi(std::string_view utf8) const override;
    std::string FromAnsi(std::string_view ansi) const override;
};

}  // namespace vantor
