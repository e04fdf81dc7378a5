// The system's open and save dialogs.
#pragma once

#include <cstdint>
#include <string>

#include "platform/MessageBoxes.hpp"

namespace vantor {

/// The common dialog's record, texts in UTF-8. Its lists are those of the system: parts closed
/// by a NUL, the whole by another.
struct FileDialogRecord {
    NativeWindow owner = 0;
    std::uint32_t flags = 0;  ///< OFN_... bits, with the system's values
    std::string title;
    std::string defaultExtension;
    std::string initialFolder;
    std::string filter;            ///< "description NUL pattern NUL ... NUL NUL"
    std::int32_t filterIndex = 0;  ///< from 1; 0 takes the first
    std::string file;              ///< buffer, in and out, NUL-filled to `maxFile` characters
    std::string fileTitle;         ///< likewise: the name without folder
    std::int32_t maxFile = 260;    ///< size of both buffers in characters
};

/// Shows the dialogs; modal like a message box. Never raises.
class CommonDialogs {
public:
    virtual ~CommonDialogs() = default;

    /// GetOpenFileName. True when a file was confirmed; `record.file` and `.fileTitle` then
    /// hold it. False on cancel and on any error, the record unchanged.
    virtual bool OpenFile(FileDialogRecord& record) = 0;

    /// GetSaveFileName, likewise.
    virtual bool SaveFile(FileDialogRecord& record) = 0;
};

}  // namespace vantor
