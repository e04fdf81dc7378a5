// The system's open and save dialogs.
#pragma once

#include "platform/CommonDialogs.hpp"

namespace vantor {

class Win32CommonDialogs : public CommonDialogs {
public:
    bool OpenFile(FileDialogRecord& record) override;
    bool SaveFile(FileDialogRecord& record) override;
};

}  // namespace vantor
