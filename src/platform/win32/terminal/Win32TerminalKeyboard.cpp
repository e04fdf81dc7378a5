#include "platform/win32/terminal/Win32TerminalKeyboard.hpp"

#include <span>
#include <utility>

namespace vantor {
namespace {

constexpr wchar_t kAnyCharacter = L'\0';

bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

KeyModifiers HeldModifiers() {
    return {.shift = IsDown(VK_SHIFT), .alt = IsDown(VK_MENU), .control = IsDown(VK_CONTROL)};
}

struct KeyRow {
    WPARAM code;
    TerminalKey key;
};

std::optional<TerminalKey> Find(std::span<const KeyRow> rows, WPARAM code) {
    for (const auto& [each, key] : rows)
        if (each == code) return key;
    return std::nullopt;
}

/// The `index`-th key from `first` on.
TerminalKey KeyFrom(TerminalKey first, WPARAM index) {
    return static_cast<TerminalKey>(static_cast<WPARAM>(first) + index);
}

/// The keypad without NumLock: the system reports the keys that are printed below the digits.
std::optional<TerminalKey> UnlockedKeypadKey(WPARAM code) {
    using enum TerminalKey;
    constexpr KeyRow kRows[] = {
        {VK_INSERT, Keypad0}, {VK_END, Keypad1},   {VK_DOWN, Keypad2},        {VK_NEXT, Keypad3},
        {VK_LEFT, Keypad4},   {VK_CLEAR, Keypad5}, {VK_RIGHT, Keypad6},       {VK_HOME, Keypad7},
        {VK_UP, Keypad8},     {VK_PRIOR, Keypad9}, {VK_DELETE, KeypadDecimal}};
    return Find(kRows, code);
}

/// Keys that also send a character message. Those of the keypad come before.
bool HasCharacter(TerminalKey key) {
    return key >= TerminalKey::Keypad0;
}

/// The character message that follows a key with a control character, without Ctrl; kAnyCharacter
/// for other keys.
wchar_t CharacterOf(WPARAM code) {
    switch (code) {
        case VK_RETURN:
            return L'\r';
        case VK_TAB:
            return L'\t';
        case VK_BACK:
            return L'\b';
        case VK_ESCAPE:
            return L'\x1b';
        case VK_SPACE:
            return L' ';
        default:
            return kAnyCharacter;
    }
}

/// True when `character` is what the system makes of a key with `expected`, with Ctrl or without.
bool IsOfKey(wchar_t expected, wchar_t character) {
    if (expected == kAnyCharacter || expected == character) return true;
    return expected == L'\r' ? character == L'\n' : expected == L'\b' && character == L'\x7f';
}

/// Shift+F10 opens the context menu and Alt+F4 closes the window. Alt with the keypad types
/// the codes of characters.
bool IsOfTheSystem(WPARAM code, bool extended, KeyModifiers modifiers) {
    if (code == VK_F10) return modifiers == KeyModifiers{.shift = true};
    if (code == VK_F4) return modifiers.alt && !modifiers.control;
    return modifiers.alt && !extended && UnlockedKeypadKey(code).has_value();
}

KeyModes ModesOf(TerminalControl& control) {
    const ScreenModes& modes = control.Screen().modes;
    const TerminalOptions& options = control.Options();
    return {.applicationCursorKeys = modes.applicationCursorKeys,
            .applicationKeypad = modes.applicationKeypad,
            .newLine = modes.lineFeedReturns,
            .enterKey = options.enterKey,
            .backspaceKey = options.backspaceKey};
}

}  // namespace

std::optional<TerminalKey> TerminalKeyOf(WPARAM code, bool extended, bool keypad) {
    using enum TerminalKey;
    constexpr KeyRow kRows[] = {{VK_UP, Up},
                                {VK_DOWN, Down},
                                {VK_RIGHT, Right},
                                {VK_LEFT, Left},
                                {VK_END, End},
                                {VK_HOME, Home},
                                {VK_INSERT, Insert},
                                {VK_DELETE, Delete},
                                {VK_PRIOR, PageUp},
                                {VK_NEXT, PageDown},
                                {VK_DECIMAL, KeypadDecimal},
                                {VK_ADD, KeypadAdd},
                                {VK_SUBTRACT, KeypadSubtract},
                                {VK_MULTIPLY, KeypadMultiply},
                                {VK_DIVIDE, KeypadDivide},
                                {VK_TAB, Tab},
                                {VK_BACK, Backspace},
                                {VK_ESCAPE, Escape},
                                {VK_SPACE, Space},
                                {'C', C},
                                {'F', F},
                                {'V', V},
                                {'0', Zero},
                                {VK_OEM_PLUS, Plus},
                                {VK_OEM_MINUS, Minus},
                                {VK_PAUSE, Pause},
                                {VK_CANCEL, Pause}};  // Ctrl+Pause
    if (code >= VK_F2 && code <= VK_F12) return KeyFrom(F2, code - VK_F2);
    if (code >= VK_NUMPAD0 && code <= VK_NUMPAD9) return KeyFrom(Keypad0, code - VK_NUMPAD0);
    if (code == VK_RETURN) return extended ? KeypadEnter : Enter;
    if (keypad && !extended)
        if (const auto key = UnlockedKeypadKey(code)) return key;
    return Find(kRows, code);
}

std::optional<LRESULT> Win32TerminalKeyboard::OnMessage(UINT message, WPARAM wParam,
                                                        LPARAM lParam) {
    switch (message) {
        case WM_KEYDOWN:
            return OnKeyDown(wParam, (HIWORD(lParam) & KF_EXTENDED) != 0);
        case WM_SYSKEYDOWN: {
            constexpr WPARAM kNoKey = 0xff;
            const auto result = OnKeyDown(wParam, (HIWORD(lParam) & KF_EXTENDED) != 0);
            // Unless the system sees a key with Alt, the release of Alt opens the menu bar.
            if (result) DefWindowProcW(mWindow.handle, WM_SYSKEYDOWN, kNoKey, lParam);
            return result;
        }
        case WM_SYSKEYUP:  // F10 would open the menu bar
            if (wParam != VK_F10 || IsOfTheSystem(wParam, false, HeldModifiers())) break;
            return 0;
        case WM_CHAR:
            OnCharacter(static_cast<wchar_t>(wParam));
            return 0;
        default:
            break;
    }
    return std::nullopt;
}

std::optional<LRESULT> Win32TerminalKeyboard::OnKeyDown(WPARAM code, bool extended) {
    mInstead.reset();
    TerminalControl& control = mWindow.control;
    const KeyModes modes = ModesOf(control);
    const KeyModifiers modifiers = HeldModifiers();
    const auto key = TerminalKeyOf(code, extended, modes.applicationKeypad);
    if (!key || IsOfTheSystem(code, extended, modifiers)) return std::nullopt;
    if (const KeyAction action = ActionOf(*key, modifiers, control.Options().breakKey);
        action != KeyAction::None) {
        if (HasCharacter(*key)) mInstead = {kAnyCharacter, ""};
        Perform(action);
        return 0;
    }
    const std::string bytes = BytesOf(*key, modifiers, modes);
    if (bytes.empty()) return std::nullopt;
    // Sent with the character message: a dead key that was typed before comes first.
    if (const wchar_t character = CharacterOf(code); character != kAnyCharacter) {
        mInstead = {character, bytes};
        return 0;
    }
    if (HasCharacter(*key)) mInstead = {kAnyCharacter, ""};
    Send(bytes);
    return 0;
}

void Win32TerminalKeyboard::Perform(KeyAction action) const {
    TerminalControl& control = mWindow.control;
    switch (action) {
        case KeyAction::PageUp:
            return control.Scroll(ScrollStep::PageUp);
        case KeyAction::PageDown:
            return control.Scroll(ScrollStep::PageDown);
        case KeyAction::LineUp:
            return control.Scroll(ScrollStep::LineUp);
        case KeyAction::LineDown:
            return control.Scroll(ScrollStep::LineDown);
        case KeyAction::ToOldest:
            return control.Scroll(ScrollStep::Start);
        case KeyAction::ToNewest:
            return control.Scroll(ScrollStep::End);
        case KeyAction::Copy:
            return control.Invoke(TerminalCommand::Copy);
        case KeyAction::Paste:
            return control.Invoke(TerminalCommand::Paste);
        case KeyAction::Find:
            return control.Invoke(TerminalCommand::Find);
        case KeyAction::Enlarge:
            return control.Invoke(TerminalCommand::LargerText);
        case KeyAction::Reduce:
            return control.Invoke(TerminalCommand::SmallerText);
        case KeyAction::FontReset:
            return control.Invoke(TerminalCommand::NormalText);
        case KeyAction::Break:
            return control.Invoke(TerminalCommand::SendBreak);
        case KeyAction::None:
            break;
    }
}

void Win32TerminalKeyboard::Send(const std::string& bytes) const {
    mWindow.control.Unselect();
    mWindow.control.Key(bytes);
}

// Ctrl+C and Ctrl+V are characters for the line; only while text is selected, Ctrl+C copies.
void Win32TerminalKeyboard::OnCharacter(wchar_t character) {
    constexpr wchar_t kCtrlC = 3;
    TerminalControl& control = mWindow.control;
    if (mInstead && IsOfKey(mInstead->character, character)) {
        const std::string bytes = std::exchange(mInstead, std::nullopt)->bytes;
        if (!bytes.empty()) Send(bytes);
        return;
    }
    if (character == kCtrlC && !control.Selection().Empty()) {
        control.Invoke(TerminalCommand::Copy);
        if (mWindow.handle != nullptr) control.Unselect();  // the next one is for the line
        return;
    }
    if (IS_HIGH_SURROGATE(character)) {
        mHighSurrogate = character;
        return;
    }
    std::wstring typed(1, character);
    const wchar_t high = std::exchange(mHighSurrogate, L'\0');
    if (IS_SURROGATE_PAIR(high, character)) typed.insert(0, 1, high);
    control.Unselect();
    control.Type(ToUtf8(typed));
}

}  // namespace vantor
