// Code page 1252 in tables of its own, for systems whose 8-bit code page is something else.
// It knows no other code page and makes no best-fit guesses.
#pragma once

#include "platform/CodePage.hpp"

namespace vantor {

/// Text that is not valid UTF-8 counts as something the code page lacks, byte by byte.
class CodePage1252 : public CodePage {
public:
    std::string ToAnsi(std::string_view utf8) const override;
    std::string FromAnsi(std::string_view ansi) const override;
};

}  // namespace vantor
