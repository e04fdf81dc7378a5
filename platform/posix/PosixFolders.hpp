// The user's folders as the desktop conventions of free systems define them. Creates none.
#pragma once

#include "platform/Folders.hpp"

namespace vantor {

/// Paths come with "/" between their parts and none at the end.
class PosixFolders : public Folders {
public:
    std::string ApplicationData() const override;
    std::string PersonalDocuments() const override;
    std::string Current() const override;
};

}  // namespace vantor
