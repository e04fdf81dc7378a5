// The texts in the program's own string resources. Which language they come in is the system's
// choice, made anew at each call.
#pragma once

#include "platform/StringTable.hpp"

namespace vantor {

class Win32StringTable : public StringTable {
public:
    std::string LoadResString(std::int32_t id) const override;
};

}  // namespace vantor
