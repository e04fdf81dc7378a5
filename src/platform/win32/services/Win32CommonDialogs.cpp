#include "platform/win32/services/Win32CommonDialogs.hpp"

#include "platform/win32/services/Win32DisabledWindows.hpp"

#include <commdlg.h>

#include <algorithm>

namespace vantor {
namespace {

using Dialog = BOOL(WINAPI*)(OPENFILENAMEW*);

/// A buffer of `size` characters plus the terminating NUL.
std::wstring Buffer(const std::string& text, std::int32_t size) {
    std::wstring buffer = ToWide(text);
    buffer.resize(static_cast<std::size_t>(std::max(size, 1)) + 1, L'\0');
    return buffer;
}

const wchar_t* OrNull(const std::wstring& text) {
    return text.empty() ? nullptr : text.c_str();
}

/// Restores the current folder, which the dialogs change with every folder shown. The current
/// folder of a process cannot be deleted, nor its drive removed.
class KeptFolder {
public:
    KeptFolder() : mFolder(GetCurrentDirectoryW(0, nullptr), L'\0') {
        mFolder.resize(GetCurrentDirectoryW(static_cast<DWORD>(mFolder.size()), mFolder.data()));
    }
    ~KeptFolder() {
        if (!mFolder.empty()) static_cast<void>(SetCurrentDirectoryW(mFolder.c_str()));
    }
    KeptFolder(const KeptFolder&) = delete;
    KeptFolder& operator=(const KeptFolder&) = delete;

private:
    std::wstring mFolder;
};

bool Show(FileDialogRecord& record, Dialog dialog) {
    const std::wstring title = ToWide(record.title);
    const std::wstring folder = ToWide(record.initialFolder);
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
    wide.lpstrInitialDir = OrNull(folder);
    wide.lpstrTitle = OrNull(title);
    wide.lpstrDefExt = OrNull(extension);
    // The Explorer-style dialog, whatever the flags.
    wide.Flags = record.flags | OFN_EXPLORER;
    const KeptFolder folderBefore;
    const Win32DisabledWindows others(wide.hwndOwner);
    if (dialog(&wide) == 0) return false;
    record.file = ToUtf8(file);
    record.fileTitle = ToUtf8(fileTitle);
    return true;
}

}  // namespace

bool Win32CommonDialogs::OpenFile(FileDialogRecord& record) {
    return Show(record, GetOpenFileNameW);
}

bool Win32CommonDialogs::SaveFile(FileDialogRecord& record) {
    return Show(record, GetSaveFileNameW);
}

}  // namespace vantor
