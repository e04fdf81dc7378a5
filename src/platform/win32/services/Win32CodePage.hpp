// The ANSI code page of the system, whichever it is.
#pragma once

#include "platform/CodePage.hpp"

namespace vantor {

/// No best-fit mapping: a stored text would read back as a different one.
class Win32CodePage : public CodePage {
public:
    std::string ToAnsi(std::string_view utf8) const override;
    std::string FromAnsi(std::string_view ansi) const override;
};

}  // namespace vantor
