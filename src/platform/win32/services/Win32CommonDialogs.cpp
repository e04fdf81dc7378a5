// The open and save dialogs of Windows.
#include <algorithm>

#include "platform/win32/services/Win32DisabledWindows.hpp"
#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"
// Requires the types of <windows.h>.
#include <commdlg.h>

namespace vantor {
namespace {

using Dialog = BOOL(WINAPI*)(OPENFILENAMEW*);

/// A buffer of `size` characters plus the terminating NUL.
std::wstring Buffer(const std::string& text, std::int32_t size) {
    std::wstring buffer = ToWide(text);
    buffer.resize(static_cast<std::size_t>(std::max(size, 1)) + 1, L'\0');
    return buffer;
}

bool Show(FileDialogRecord& record, Dialog dialog) {
    const std::wstring title = ToWide(record.title);
    const std::wstring initialFolder = ToWide(record.initialFolder);
    const std::wstring filter = ToWide(record.filter);
    // Windows adds the dot itself.
    const std::wstring extension =
        ToWide(record.defaultExtension.starts_with('.') ? record.defaultExtension.substr(1)
                                                        : record.defaultExtension);
    std::wstring file = Buffer(record.file, record.maxFile);
    std::wstring fileTitle = Buffer(record.fileTitle, record.maxFile);
    OPENFILENAMEW wide{};
    wide.lStructSize = sizeof wide;
    wide.hwndOwner = reinterpret_cast<HWND>(record.owner);
    wide.lpstrFilter = OrNull(filter);
    wide.nFilterIndex = static_cast<DWORD>(record.filterIndex);
    wide.lpstrFile = file.data();
    wide.nMaxFile = static_cast<DWORD>(record.maxFile);
    wide.lpstrFileTitle = fileTitle.data();
    wide.nMaxFileTitle = static_cast<DWORD>(record.maxFile);
    wide.lpstrInitialDir = OrNull(initialFolder);
    wide.lpstrTitle = OrNull(title);
    wide.lpstrDefExt = OrNull(extension);
    // The Explorer-style dialog, whatever the flags.
    wide.Flags = record.flags | OFN_EXPLORER;
    // The dialogs change the current folder with every folder shown. The current folder of
    // a process cannot be deleted, nor its drive removed.
    const Finally restoreFolder([folder = CurrentFolder()] {
        if (!folder.empty()) SetCurrentDirectoryW(folder.c_str());
    });
    const Win32DisabledWindows others(wide.hwndOwner);
    if (dialog(&wide) == 0) return false;
    record.file = ToUtf8(file);
    record.fileTitle = ToUtf8(fileTitle);
    return true;
}

class Win32CommonDialogs : public CommonDialogs {
public:
    bool OpenFile(FileDialogRecord& record) override { return Show(record, GetOpenFileNameW); }
    bool SaveFile(FileDialogRecord& record) override { return Show(record, GetSaveFileNameW); }
};

}  // namespace

std::unique_ptr<CommonDialogs> MakeWin32CommonDialogs() {
    return std::make_unique<Win32CommonDialogs>();
}

}  // namespace vantor
