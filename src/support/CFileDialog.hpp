// Properties for the common open and save dialogs.
#pragma once

#include <cstdint>
#include <string>

#include "platform/CommonDialogs.hpp"

namespace vantor {

class CFileDialog {
public:
    explicit CFileDialog(CommonDialogs& dialogs) : mDialogs(dialogs) {}

    // Copied unchanged into `FileDialogRecord`. Strings are UTF-8.
    std::string DefaultExt;
    std::string DialogTitle;
    std::string FileName;          ///< in and out: the full path
    std::string FileTitle;         ///< in and out: the name without folder
    std::string Filter;            ///< description and pattern pairs, separated by "|"
    std::int32_t FilterIndex = 0;  ///< passed in; the user's choice is not read back
    std::int32_t Flags = 0;        ///< the common dialog's flag bits
    NativeWindow hWndParent = 0;
    std::string InitialDir;
    std::int32_t MaxFileSize = 260;  ///< size of both name buffers in characters

    /// Shows the open or the save dialog. Returns true when the user confirmed a file;
    /// FileName and FileTitle then hold it. On cancel and on failure both are unchanged.
    /// A FileName longer than MaxFileSize is reported as an overflow.
    bool Show(bool openDialog);

private:
    CommonDialogs& mDialogs;
};

}  // namespace vantor
