// The keyboard of a terminal's window: turns the messages of keys into keys and characters.
#pragma once

#include <optional>
#include <string>

#include "platform/win32/terminal/Win32TerminalWindow.hpp"
#include "terminal/TerminalKeys.hpp"

namespace vantor {

/// The key with the virtual key code `code`; empty for keys that only have a character. `extended`:
/// the key is not on the numeric keypad, or is its Enter or "/". `keypad`: the keypad sends
/// sequences, whatever the state of NumLock.
std::optional<TerminalKey> TerminalKeyOf(WPARAM code, bool extended, bool keypad);

class Win32TerminalKeyboard {
public:
    /// `window` outlives the keyboard.
    explicit Win32TerminalKeyboard(const Win32TerminalWindow& window) : mWindow(window) {}

    /// WM_KEYDOWN, WM_SYSKEYDOWN, WM_SYSKEYUP and WM_CHAR. Empty for messages that DefWindowProc
    /// has to handle.
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

private:
    /// What the key that is down sends or does instead of its character, which arrives later.
    struct Instead {
        wchar_t character;  // kAnyCharacter: any
        std::string bytes;
    };

    std::optional<LRESULT> OnKeyDown(WPARAM code, bool extended);
    void OnCharacter(wchar_t character);
    void Perform(KeyAction action) const;
    void Send(const std::string& bytes) const;

    const Win32TerminalWindow& mWindow;
    std::optional<Instead> mInstead;
    wchar_t mHighSurrogate = L'\0';  // the first half of a character that is being typed
};

}  // namespace vantor
