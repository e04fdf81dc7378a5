#include "terminal/TerminalKeys.hpp"

#include <array>
#include <cstddef>

namespace vantor {
namespace {

using enum TerminalKey;

constexpr bool IsBetween(TerminalKey key, TerminalKey first, TerminalKey last) {
    return key >= first && key <= last;
}

constexpr std::size_t Distance(TerminalKey key, TerminalKey first) {
    return static_cast<std::size_t>(key) - static_cast<std::size_t>(first);
}

/// 1 without any modifier.
int NumberOf(KeyModifiers modifiers) {
    return 1 + (modifiers.shift ? 1 : 0) + (modifiers.alt ? 2 : 0) + (modifiers.control ? 4 : 0);
}

/// A key whose sequence ends in a letter: introduced by ESC O or ESC [, and with modifiers
/// always by ESC [.
std::string Lettered(char final, const char* introducer, KeyModifiers modifiers) {
    if (modifiers == KeyModifiers{}) return std::string(introducer) + final;
    return "\x1b[1;" + std::to_string(NumberOf(modifiers)) + final;
}

/// A key whose sequence has a number.
std::string Numbered(int number, KeyModifiers modifiers) {
    const std::string start = "\x1b[" + std::to_string(number);
    if (modifiers == KeyModifiers{}) return start + "~";
    return start + ";" + std::to_string(NumberOf(modifiers)) + "~";
}

std::string CursorKey(TerminalKey key, KeyModifiers modifiers, const KeyModes& modes) {
    constexpr std::array kFinals = {'A', 'B', 'C', 'D', 'F', 'H'};
    return Lettered(kFinals[Distance(key, Up)], modes.applicationCursorKeys ? "\x1bO" : "\x1b[",
                    modifiers);
}

std::string FunctionKey(TerminalKey key, KeyModifiers modifiers) {
    constexpr std::array kFinals = {'Q', 'R', 'S'};
    constexpr std::array kNumbers = {15, 17, 18, 19, 20, 21, 23, 24};
    if (key <= F4) return Lettered(kFinals[Distance(key, F2)], "\x1bO", modifiers);
    return Numbered(kNumbers[Distance(key, F5)], modifiers);
}

/// With Ctrl and Alt the keypad keeps the meanings that the system gives it.
std::string KeypadKey(TerminalKey key, KeyModifiers modifiers, const KeyModes& modes) {
    constexpr std::array kFinals = {'p', 'q', 'r', 's', 't', 'u', 'v', 'w',
                                    'x', 'y', 'n', 'k', 'm', 'j', 'o', 'M'};
    if (!modes.applicationKeypad || modifiers.control || modifiers.alt) return {};
    return std::string("\x1bO") + kFinals[Distance(key, Keypad0)];
}

std::string EnterBytes(KeyModifiers modifiers, const KeyModes& modes) {
    if (modifiers.control) return "\n";
    if (modes.newLine || modes.enterKey == EnterKey::CrLf) return "\r\n";
    return modes.enterKey == EnterKey::Lf ? "\n" : "\r";
}

/// The keys that have a control character.
std::string ControlKey(TerminalKey key, KeyModifiers modifiers, const KeyModes& modes) {
    switch (key) {
        case Enter:
        case KeypadEnter:
            return EnterBytes(modifiers, modes);
        case Tab:
            return modifiers.shift ? "\x1b[Z" : "\t";
        case Backspace:  // Ctrl selects the other of the two
            return modifiers.control == (modes.backspaceKey == BackspaceKey::Bs) ? "\x7f" : "\b";
        case Escape:
            return "\x1b";
        case Space:
            return modifiers.control ? std::string(1, '\0') : std::string();
        default:
            return {};
    }
}

/// Keys with Ctrl and Shift, which no character has.
KeyAction ControlShiftAction(TerminalKey key) {
    switch (key) {
        case Up:
            return KeyAction::LineUp;
        case Down:
            return KeyAction::LineDown;
        case Home:
            return KeyAction::ToOldest;
        case End:
            return KeyAction::ToNewest;
        case C:
            return KeyAction::Copy;
        case V:
            return KeyAction::Paste;
        case F:
            return KeyAction::Find;
        case Plus:  // shifted on some layouts
            return KeyAction::Enlarge;
        default:
            return KeyAction::None;
    }
}

KeyAction ControlAction(TerminalKey key) {
    switch (key) {
        case Insert:
            return KeyAction::Copy;
        case Plus:
        case KeypadAdd:
            return KeyAction::Enlarge;
        case Minus:
        case KeypadSubtract:
            return KeyAction::Reduce;
        case Zero:
        case Keypad0:
            return KeyAction::FontReset;
        default:
            return KeyAction::None;
    }
}

}  // namespace

std::string BytesOf(TerminalKey key, KeyModifiers modifiers, const KeyModes& modes) {
    if (IsBetween(key, Up, Home)) return CursorKey(key, modifiers, modes);
    if (key == Insert) return Numbered(2, modifiers);
    if (key == Delete) return Numbered(3, modifiers);
    if (key == PageUp) return Numbered(5, modifiers);
    if (key == PageDown) return Numbered(6, modifiers);
    if (IsBetween(key, F2, F12)) return FunctionKey(key, modifiers);
    if (modifiers.alt) return {};  // menus, and codes typed on the keypad
    if (IsBetween(key, Keypad0, KeypadEnter)) {
        std::string bytes = KeypadKey(key, modifiers, modes);
        if (!bytes.empty()) return bytes;
    }
    return ControlKey(key, modifiers, modes);
}

KeyAction ActionOf(TerminalKey key, KeyModifiers modifiers, bool breakKey) {
    const auto& [shift, alt, control] = modifiers;
    if (key == Pause) return breakKey ? KeyAction::Break : KeyAction::None;
    if (alt) return KeyAction::None;  // AltGr too, which is Ctrl and Alt
    if (shift && key == PageUp) return KeyAction::PageUp;
    if (shift && key == PageDown) return KeyAction::PageDown;
    if (shift && control) return ControlShiftAction(key);
    if (shift) return key == Insert ? KeyAction::Paste : KeyAction::None;
    return control ? ControlAction(key) : KeyAction::None;
}

}  // namespace vantor
