// What the keys of a terminal send and do.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <optional>
#include <sstream>

#include "terminal/TerminalKeys.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

// Both in the order of their enumeration.
constexpr std::array kKeys = {
    "Up",     "Down",  "Right", "Left", "End", "Home", "Insert",  "Delete", "PageUp", "PageDown",
    "F2",     "F3",    "F4",    "F5",   "F6",  "F7",   "F8",      "F9",     "F10",    "F11",
    "F12",    "KP0",   "KP1",   "KP2",  "KP3", "KP4",  "KP5",     "KP6",    "KP7",    "KP8",
    "KP9",    "KP.",   "KPAdd", "KP-",  "KP*", "KP/",  "KPEnter", "Enter",  "Tab",    "Backspace",
    "Escape", "Space", "C",     "F",    "V",   "0",    "Plus",    "-",      "Pause"};
constexpr std::array kActions = {"",        "page-up", "page-down",  "line-up", "line-down",
                                 "oldest",  "newest",  "copy",       "paste",   "find",
                                 "enlarge", "reduce",  "font-reset", "break"};

std::string Answer(const Words& words) {
    KeyModes modes;
    KeyModifiers modifiers;
    bool breakKey = false;
    std::optional<TerminalKey> key;
    const std::map<std::string, std::function<void()>> kWords = {
        {"Shift", [&] { modifiers.shift = true; }},
        {"Alt", [&] { modifiers.alt = true; }},
        {"Ctrl", [&] { modifiers.control = true; }},
        {"cursor-keys", [&] { modes.applicationCursorKeys = true; }},
        {"keypad", [&] { modes.applicationKeypad = true; }},
        {"new-line", [&] { modes.newLine = true; }},
        {"lf", [&] { modes.enterKey = EnterKey::Lf; }},
        {"crlf", [&] { modes.enterKey = EnterKey::CrLf; }},
        {"del", [&] { modes.backspaceKey = BackspaceKey::Del; }},
        {"breaks", [&] { breakKey = true; }}};
    for (const std::string& word : words) {
        std::istringstream parts(word);
        for (std::string part; std::getline(parts, part, '+');)
            if (const auto* const found = std::ranges::find(kKeys, part); found != kKeys.end())
                key = static_cast<TerminalKey>(found - kKeys.begin());
            else
                kWords.at(part)();
    }
    const KeyAction action = ActionOf(key.value(), modifiers, breakKey);
    return action == KeyAction::None ? BytesOf(*key, modifiers, modes)
                                     : kActions.at(static_cast<std::size_t>(action));
}

TEST(TerminalKeys, EachKeySendsItsBytesOrWorksOnTheWindow) {
    ExpectTable("keys", Answer);
}

}  // namespace
}  // namespace vantor
