// The terminal's commands, and the context menu that offers them. What they do is elsewhere: in
// TerminalControl and, where a window is needed, with the owner of the terminal.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/SerialPort.hpp"
#include "terminal/options/TerminalOptions.hpp"

namespace vantor {

class StringTable;

/// The terminal's commands: up to 11 with the numbers of its interface, the others from 100 on.
enum class TerminalCommand : std::uint8_t {
    None = 0,       ///< of an entry that only informs
    Copy = 1,       ///< the selection to the clipboard
    Paste = 2,      ///< types the clipboard's text
    SelectAll = 3,  ///< selects the whole text
    Open = 7,       ///< opens the port
    Close = 8,      ///< closes the port
    Clear = 9,      ///< clears the screen; its text stays in the history
    Reset = 10,     ///< resets colours, scroll region and modes, and clears the screen
    Settings = 11,  ///< shows the port settings; performed by the owner of the terminal

    // How the text is shown: see `ChooseOption`. Performed by the owner, who keeps the options.
    ViewText = 100,
    ViewControlCharacters,
    ViewHex,
    TimeStampsOff,
    TimeStampsTimeOfDay,
    TimeStampsSincePrevious,
    DarkScheme,
    LargerText,
    SmallerText,
    NormalText,

    // Performed by the owner.
    Find,              ///< shows the box for a search
    SaveScrollback,    ///< asks for a file
    SendBytes,         ///< shows the box for bytes
    TerminalSettings,  ///< shows the terminal's settings

    ClearScrollback,
    SendBreak,
    Dtr,  ///< asserts DTR, or clears it
    Rts,  ///< asserts RTS, or clears it
};

/// One entry of the context menu.
struct OfferedCommand {
    TerminalCommand command = TerminalCommand::None;
    std::string caption;  ///< UTF-8
    bool enabled = true;
    bool startsGroup = false;  ///< preceded by a separator
    bool checked = false;
    std::vector<OfferedCommand> children{};  ///< of a submenu, which has no command
};

/// Commands by number.
using TerminalCommands = std::bitset<256>;

/// What the context menu shows.
struct TerminalMenuState {
    bool portOpen;
    bool selected;            ///< text is selected
    TerminalCommands always;  ///< offered also while they have no effect
    TerminalOptions options{};
    bool dtr;  ///< as the terminal set it last
    bool rts;
    std::optional<ModemLines> lines{};  ///< empty when the port is closed or has none
    LineErrors errors{};
    std::string captureFile{};  ///< empty without a capture
};

/// The context menu, top to bottom.
std::vector<OfferedCommand> MakeTerminalMenu(const StringTable& strings,
                                             const TerminalMenuState& state);

/// Changes `options` as a command of the submenu "View" says; false for any other command.
/// `designedPoints` is the font size that `fontPoints` 0 stands for.
bool ChooseOption(TerminalCommand command, TerminalOptions& options, int designedPoints);

}  // namespace vantor
