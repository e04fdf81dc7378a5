// The menu bar of a window, built from the menu rows of its design and kept in sync with them.
#pragma once

#include <map>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

class MenuItem;

class Win32MenuBar {
public:
    /// Command identifiers of the entries start here.
    static constexpr UINT kFirstCommand = 2000;

    /// Builds the bar of `form`; `Handle` is null for a form without menus. Raises RuntimeError 7
    /// when the system cannot create it.
    Win32MenuBar(Win32Context& context, Form& form);
    ~Win32MenuBar();
    Win32MenuBar(const Win32MenuBar&) = delete;
    Win32MenuBar& operator=(const Win32MenuBar&) = delete;

    HMENU Menu() const { return mBar; }
    /// The entry with the command identifier `command`; null when there is none.
    MenuItem* Find(UINT command) const;
    /// Applies a changed property of one of the entries.
    void Follow(const Control& item, Property property, HWND window);

private:
    struct Entry {
        MenuItem* item;
        HMENU menu;   // the menu that contains it
        HMENU popup;  // the menu that it opens; null for a command
        UINT position;
    };

    explicit Win32MenuBar(Win32Context& context) : mContext(context) {}
    Entry Insert(MenuItem& item, const ControlDesign& row, UINT command);
    HMENU MenuOf(const char* parent) const;
    bool HasEntries(const Form& form, const std::string& name) const;

    Win32Context& mContext;
    HMENU mBar = nullptr;
    std::map<UINT, Entry> mEntries;  // by command
};

}  // namespace vantor
