// The open and save dialogs of Windows.
#pragma once

#include "platform/CommonDialogs.hpp"

namespace vantor {

class Win32CommonDialogs : public CommonDialogs {
public:
    bool OpenFile(FileDialogRecord& record) override;
    bool SaveFile(FileDialogRecord& record) override;
};

}  // namespace vantor
