// The system's open and save dialogs.
#pragma once

#include <cstdint>
#include <string>

#include "platform/MessageBoxes.hpp"

namespace vantor {

/// The fields of OPENFILENAME, strings in UTF-8. Lists have the Win32 format:
/// each item ends with a NUL, and the list with another.
struct FileDialogRecord {
    NativeWindow owner = 0;
    std::uint32_t flags = 0;  ///< OFN_... bits, Win32 values
    std::string title;
    std::string defaultExtension;
    std::string initialFolder;
    std::string filter;            ///< "description NUL pattern NUL ... NUL NUL"
    std::int32_t filterIndex = 0;  ///< from 1; 0 selects the first
    std::string file;              ///< in/out buffer, NUL-padded to `maxFile` characters
    std::string fileTitle;         ///< likewise: the name without folder
    std::int32_t maxFile = 260;    ///< size of both buffers in characters
};

/// Shows the dialogs; modal like a message box. Never raises.
class CommonDialogs {
public:
    virtual ~CommonDialogs() = default;

    /// GetOpenFileName. Returns true when the user confirmed a file, which `record.file` and
    /// `.fileTitle` then hold; false on cancel and on any error, with the record unchanged.
    virtual bool OpenFile(FileDialogRecord& record) = 0;

    /// GetSaveFileName, with the same contract.
    virtual bool SaveFile(FileDialogRecord& record) = 0;
};

}  // namespace vantor
