#include "platform/win32/Win32CommonDialogs.hpp"

#include "platform/win32/Windows.hpp"

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
