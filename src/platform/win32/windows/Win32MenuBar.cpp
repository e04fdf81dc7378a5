#include "platform/win32/windows/Win32MenuBar.hpp"

#include <algorithm>

#include "controls/Controls.hpp"

namespace vantor {
namespace {

MENUITEMINFOW EmptyInfo(UINT mask) {
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = mask;
    return info;
}

/// Caption, with its text in `text`, and state of `item`.
MENUITEMINFOW InfoFor(const Control& item, std::wstring& text) {
    text = ToWide(item.Caption());
    MENUITEMINFOW info = EmptyInfo(MIIM_FTYPE | MIIM_STATE);
    info.fState = item.Enabled() ? MFS_ENABLED : MFS_GRAYED;
    info.fType = MFT_SEPARATOR;
    if (text == L"-") return info;
    info.fMask |= MIIM_STRING;
    info.fType = MFT_STRING;
    info.dwTypeData = text.data();
    return info;
}

}  // namespace

Win32MenuBar::Win32MenuBar(Win32Context& context, const Form& form) {
    for (const ControlDesign& row : form.Design().controls) {
        if (row.kind != ControlKind::MenuItem) continue;
        if (mBar == nullptr) mBar = Hold(CreateMenu(), context.held.menus);
        auto& item = static_cast<MenuItem&>(form.ControlOf(row));
        const HMENU menu = MenuOf(row.parent);
        const auto position = static_cast<UINT>(std::max(GetMenuItemCount(menu), 0));
        std::wstring text;
        MENUITEMINFOW info = InfoFor(item, text);
        info.fMask |= MIIM_ID;
        info.wID = kFirstCommand + static_cast<UINT>(mEntries.size());
        InsertMenuItemW(menu, position, TRUE, &info);
        mEntries.push_back({&item, menu, position});
    }
}

/// The menu that the entry `parent` opens, created when it is first asked for; the bar without one.
HMENU Win32MenuBar::MenuOf(const char* parent) const {
    const auto found = std::ranges::find_if(
        mEntries, [parent](const Entry& entry) { return entry.item->Name() == parent; });
    if (found == mEntries.end()) return mBar.get();
    if (const HMENU popup = GetSubMenu(found->menu, static_cast<int>(found->position)))
        return popup;
    MENUITEMINFOW info = EmptyInfo(MIIM_SUBMENU);
    info.hSubMenu = Made(CreatePopupMenu());
    SetMenuItemInfoW(found->menu, found->position, TRUE, &info);
    return info.hSubMenu;
}

ClickControl* Win32MenuBar::Find(UINT command) const {
    const std::size_t index = command - kFirstCommand;  // below the first one wraps around
    return index < mEntries.size() ? mEntries[index].item : nullptr;
}

void Win32MenuBar::Follow(const Control& item, Property property, HWND window) const {
    if (property != Property::Caption && property != Property::Enabled) return;
    for (const Entry& entry : mEntries) {
        if (entry.item != &item) continue;
        std::wstring text;
        const MENUITEMINFOW info = InfoFor(item, text);
        SetMenuItemInfoW(entry.menu, entry.position, TRUE, &info);
        if (entry.menu == mBar.get()) DrawMenuBar(window);
    }
}

}  // namespace vantor
