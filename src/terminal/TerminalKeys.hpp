// The keys of a terminal: the bytes that each sends, and those that work on the window instead.
#pragma once

#include <cstdint>
#include <string>

#include "terminal/options/TerminalOptions.hpp"

namespace vantor {

/// Keys that send a sequence or have a use of their own. All other keys send their character.
/// F1 is the help key of the program and never arrives here.
enum class TerminalKey : std::uint8_t {
    // Cursor keys
    Up,
    Down,
    Right,
    Left,
    End,
    Home,
    // Editing keys
    Insert,
    Delete,
    PageUp,
    PageDown,
    // Function keys, in order
    F2,
    F3,
    F4,
    F5,
    F6,
    F7,
    F8,
    F9,
    F10,
    F11,
    F12,
    // The numeric keypad, digits in order
    Keypad0,
    Keypad1,
    Keypad2,
    Keypad3,
    Keypad4,
    Keypad5,
    Keypad6,
    Keypad7,
    Keypad8,
    Keypad9,
    KeypadDecimal,
    KeypadAdd,
    KeypadSubtract,
    KeypadMultiply,
    KeypadDivide,
    KeypadEnter,
    // Keys with a control character
    Enter,
    Tab,
    Backspace,
    Escape,
    Space,
    // Keys for the window
    C,
    F,
    V,
    Zero,
    Plus,
    Minus,
    Pause,
};

struct KeyModifiers {
    bool shift = false;
    bool alt = false;
    bool control = false;

    friend bool operator==(const KeyModifiers&, const KeyModifiers&) = default;
};

/// What changes the bytes of a key: modes that the far end sets, and the user's choices.
struct KeyModes {
    bool applicationCursorKeys = false;
    bool applicationKeypad = false;
    bool newLine = false;  ///< Enter sends CR LF, whatever the user's choice
    EnterKey enterKey = EnterKey::Cr;
    BackspaceKey backspaceKey = BackspaceKey::Bs;
};

/// The bytes that `key` sends, in 7-bit controls: the sequences of a VT102, and for the keys and
/// modifiers that it lacks those of xterm. Empty for a key that sends its own character, if it has
/// one: Space without Ctrl, and the keypad in its numeric mode.
std::string BytesOf(TerminalKey key, KeyModifiers modifiers, const KeyModes& modes);

/// What a key does to the window instead of being sent.
enum class KeyAction : std::uint8_t {
    None,
    PageUp,     ///< shows a page further up in the history
    PageDown,   ///< shows a page further down
    LineUp,     ///< shows a line further up
    LineDown,   ///< shows a line further down
    ToOldest,   ///< shows the start of the history
    ToNewest,   ///< shows the screen
    Copy,       ///< copies the selection
    Paste,      ///< types the clipboard's text
    Find,       ///< finds text in the history
    Enlarge,    ///< enlarges the font
    Reduce,     ///< reduces the font
    FontReset,  ///< restores the font size of the design
    Break,      ///< sends a break
};

/// The action of `key`; None for a key that is sent. `breakKey`: Pause sends a break.
KeyAction ActionOf(TerminalKey key, KeyModifiers modifiers, bool breakKey);

}  // namespace vantor
