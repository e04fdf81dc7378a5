// Texts from the program's string resources. Windows selects the language at each call.
#pragma once

#include "platform/StringTable.hpp"

namespace vantor {

class Win32StringTable : public StringTable {
public:
    std::string LoadResString(std::int32_t id) const override;
};

}  // namespace vantor
