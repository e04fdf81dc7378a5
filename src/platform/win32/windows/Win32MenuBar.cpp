#include "platform/win32/windows/Win32MenuBar.hpp"

#include <algorithm>

#include "controls/Controls.hpp"

namespace vantor {
namespace {

MENUITEMINFOW InfoFor(const Control& item, std::wstring& text) {
    text = ToWide(item.Caption());
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_FTYPE | MIIM_STATE;
    info.fState = item.Enabled() ? MFS_ENABLED : MFS_GRAYED;
    if (item.Caption() == "-") {
        info.fType = MFT_SEPARATOR;
    } else {
        info.fMask |= MIIM_STRING;
        info.fType = MFT_STRING;
        info.dwTypeData = text.data();
    }
    return info;
}

}  // namespace

// Delegates to the other constructor, so that the destructor destroys a partly built bar.
Win32MenuBar::Win32MenuBar(Win32Context& context, Form& form) : Win32MenuBar(context) {
    UINT command = kFirstCommand;
    for (Control* control : form.Controls()) {
        if (control->Kind() != ControlKind::MenuItem) continue;
        const auto row = std::ranges::find_if(
            form.Design().controls,
            [control](const ControlDesign& design) { return design.name == control->Name(); });
        auto& item = static_cast<MenuItem&>(*control);
        if (mBar == nullptr) {
            mBar = Made(CreateMenu());
            ++mContext.held.menus;
        }
        Entry entry = Insert(item, *row, command);
        if (HasEntries(form, item.Name())) {
            entry.popup = Made(CreatePopupMenu());
            MENUITEMINFOW info{};
            info.cbSize = sizeof info;
            info.fMask = MIIM_SUBMENU;
            info.hSubMenu = entry.popup;
            static_cast<void>(SetMenuItemInfoW(entry.menu, entry.position, TRUE, &info));
        }
        mEntries.emplace(command++, entry);
    }
}

// A window destroys the bar that is set on it; this destroys a bar that is no longer set.
Win32MenuBar::~Win32MenuBar() {
    if (mBar == nullptr) return;
    static_cast<void>(DestroyMenu(mBar));
    --mContext.held.menus;
}

bool Win32MenuBar::HasEntries(const Form& form, const std::string& name) const {
    return std::ranges::any_of(form.Design().controls, [&name](const ControlDesign& row) {
        return row.kind == ControlKind::MenuItem && row.parent == name;
    });
}

HMENU Win32MenuBar::MenuOf(const char* parent) const {
    for (const auto& [command, entry] : mEntries)
        if (entry.item->Name() == parent) return entry.popup;
    return mBar;
}

Win32MenuBar::Entry Win32MenuBar::Insert(MenuItem& item, const ControlDesign& row, UINT command) {
    const HMENU menu = MenuOf(row.parent);
    const auto position = static_cast<UINT>(std::max(GetMenuItemCount(menu), 0));
    std::wstring text;
    MENUITEMINFOW info = InfoFor(item, text);
    info.fMask |= MIIM_ID;
    info.wID = command;
    static_cast<void>(InsertMenuItemW(menu, position, TRUE, &info));
    return {&item, menu, nullptr, position};
}

MenuItem* Win32MenuBar::Find(UINT command) const {
    const auto found = mEntries.find(command);
    return found == mEntries.end() ? nullptr : found->second.item;
}

void Win32MenuBar::Follow(const Control& item, Property property, HWND window) {
    if (property != Property::Caption && property != Property::Enabled) return;
    for (const auto& [command, entry] : mEntries) {
        if (entry.item != &item) continue;
        std::wstring text;
        const MENUITEMINFOW info = InfoFor(item, text);
        static_cast<void>(SetMenuItemInfoW(entry.menu, entry.position, TRUE, &info));
        if (entry.menu == mBar) static_cast<void>(DrawMenuBar(window));
    }
}

}  // namespace vantor
