// The user's folders as the shell reports them. Creates none.
#pragma once

#include "platform/Folders.hpp"

namespace vantor {

/// Paths use "\".
class Win32Folders : public Folders {
public:
    std::string ApplicationData() const override;
    std::string PersonalDocuments() const override;
    std::string Current() const override;
};

}  // namespace vantor
