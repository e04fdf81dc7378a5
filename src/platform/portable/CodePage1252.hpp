// Code page 1252 in built-in tables, for systems whose 8-bit code page is a different one.
// It supports no other code page and no best-fit mapping.
#pragma once

#include "platform/CodePage.hpp"

namespace vantor {

/// Each byte of invalid UTF-8 counts as one unmappable character.
class CodePage1252 : public CodePage {
public:
    std::string ToAnsi(std::string_view utf8) const override;
    std::string FromAnsi(std::string_view ansi) const override;
};

}  // namespace vantor
