// The user's folders by the XDG conventions. Creates none.
#pragma once

#include "platform/Folders.hpp"

namespace vantor {

/// Paths use "/" and have no trailing one.
class PosixFolders : public Folders {
public:
    std::string ApplicationData() const override;
    std::string PersonalDocuments() const override;
    std::string Current() const override;
};

}  // namespace vantor
