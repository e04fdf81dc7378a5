#include "support/CFileDialog.hpp"

#include <algorithm>

#include "support/Conversions.hpp"
#include "support/Traps.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

/// `text` padded with NULs to `size` characters.
std::string Buffer(const std::string& text, std::int32_t size) {
    const std::size_t length = CharacterCount(text);
    if (size < 0 || length > static_cast<std::size_t>(size))
        throw RuntimeError(ErrorNumber::Overflow);
    return text + std::string(static_cast<std::size_t>(size) - length, '\0');
}

/// A multiple selection is the folder and the names, separated by a NUL and terminated by two.
std::string Cleaned(std::string buffer) {
    using namespace std::string_literals;
    buffer.resize(std::min(buffer.size(), buffer.find("\0\0"s)));
    std::ranges::replace(buffer, '\0', ' ');
    return buffer;
}

std::string FilterList(std::string filter) {
    filter += "||";
    std::ranges::replace(filter, '|', '\0');
    return filter + std::string(2, '\0');
}

}  // namespace

bool CFileDialog::Show(bool openDialog) {
    bool confirmed = false;
    Trapped("CFileDialog.Show", [&] {
        FileDialogRecord record{.owner = hWndParent,
                                .flags = static_cast<std::uint32_t>(Flags),
                                .title = DialogTitle,
                                .defaultExtension = DefaultExt,
                                .initialFolder = InitialDir,
                                .filter = FilterList(Filter),
                                .filterIndex = FilterIndex,
                                .file = Buffer(FileName, MaxFileSize),
                                .fileTitle = Buffer(FileTitle, MaxFileSize),
                                .maxFile = MaxFileSize};
        confirmed = openDialog ? mDialogs.OpenFile(record) : mDialogs.SaveFile(record);
        if (!confirmed) return;
        FileName = Cleaned(record.file);
        FileTitle = Cleaned(record.fileTitle);
    });
    return confirmed;
}

}  // namespace vantor
