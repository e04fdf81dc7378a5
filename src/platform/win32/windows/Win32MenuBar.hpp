// The menu bar of a window, built from the menu rows of its design and kept in sync with them.
#pragma once

#include <vector>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

class ClickControl;

class Win32MenuBar {
public:
    /// Command identifiers of the entries start here, in design order.
    static constexpr UINT kFirstCommand = 2000;

    /// Builds the bar of `form`; raises RuntimeError 7 when the system cannot create it.
    Win32MenuBar(Win32Context& context, const Form& form);

    /// Null for a form without menus.
    HMENU Menu() const { return mBar.get(); }
    /// The entry with the command identifier `command`; null when there is none.
    ClickControl* Find(UINT command) const;
    /// Applies a changed property of one of the entries.
    void Follow(const Control& item, Property property, HWND window) const;

private:
    struct Entry {
        ClickControl* item;
        HMENU menu;  // the menu that contains it
        UINT position;
    };

    HMENU MenuOf(const char* parent) const;

    // Owned: a window destroys only the bar that is set on it.
    Win32Object<HMENU> mBar;
    std::vector<Entry> mEntries;  // by command
};

}  // namespace vantor
