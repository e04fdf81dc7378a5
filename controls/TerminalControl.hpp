// The serial terminal control: a port, a screen, a keyboard, capture to a file, and the commands of
// a context menu. It works without a peer, which only paints the screen and forwards user input.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/BufferedPort.hpp"
#include "controls/Control.hpp"
#include "controls/Event.hpp"
#include "controls/TerminalParser.hpp"
#include "controls/TerminalScreen.hpp"
#include "controls/TerminalSelection.hpp"
#include "platform/Files.hpp"
#include "platform/MessagePump.hpp"
#include "platform/Platform.hpp"

namespace vantor {

/// The terminal's commands, with the numbers of its interface.
enum class TerminalCommand : std::uint8_t {
    Copy = 1,       ///< the selection to the clipboard
    Paste = 2,      ///< types the clipboard's text
    SelectAll = 3,  ///< selects the whole text
    Open = 7,       ///< opens the port
    Close = 8,      ///< closes the port
    Clear = 9,      ///< clears the screen; its text stays in the history
    Reset = 10,     ///< resets colours, scroll region and modes, and clears the screen
    Settings = 11,  ///< shows the dialog for the port settings
};

/// When the context menu offers a command.
enum class CommandOffer : std::uint8_t {
    WhenUseful = 0,  ///< only while it has an effect; greyed otherwise
    Never = 1,       ///< it is not in the menu
    Always = 2,      ///< at any time
};

/// One entry of the context menu.
struct OfferedCommand {
    TerminalCommand command;
    std::string caption;  ///< UTF-8
    bool enabled;
    bool startsGroup;  ///< preceded by a separator
};

/// Member numbers are those of the vendor's terminal control. Bytes in both directions pass
/// unchanged; on the screen they are characters of the ANSI code page. No line error raises:
/// a failed open or a lost device shows only in `PortOpen`.
///
/// Peers get `Property::Value` when text has arrived (see `TerminalScreen::Dirty`; a peer calls
/// `Clean` after painting) and `Property::Repaint` when everything must be repainted.
class TerminalControl : public Control {
public:
    TerminalControl(Form& parent, std::string name, Platform& platform);
    ~TerminalControl() override;

    /// Member 1: the settings string (see ParseLineSettings), used at the next open.
    const std::string& Settings() const { return mPort.settings; }
    void Settings(std::string settings) { mPort.settings = std::move(settings); }

    /// Member 28: the port's name, "COM1" style, or n for COMn. Used at the next open.
    const std::string& Port() const { return mPort.name; }
    void Port(std::string name) { mPort.name = std::move(name); }

    /// Member 88: the port is open.
    bool PortOpen() const { return mPort.IsOpen(); }

    /// Member 116: performs one of the terminal's commands without raising `Command`.
    void PerformCommand(TerminalCommand command);

    /// Member 130: shows the dialog for the port settings, which the owner provides.
    void ShowSettings();
    std::function<void()> SettingsDialog;

    /// Member 16: the file to which received bytes are captured; empty when there is none.
    /// A name starts a capture, replacing the file; an empty one ends it. A running capture ends in
    /// either case. Raises the errors of Files::Create.
    const std::string& CaptureFile() const { return mCaptureFile; }
    void CaptureFile(const std::string& path);

    /// Member 84: transmits one line unchanged, followed by a CR.
    void Output(std::string_view line);

    /// Member 49: while true, the view stays at the newest text, to follow a long transmission.
    /// Otherwise a view that was scrolled up stays where it is.
    bool FollowOutput() const { return mFollowOutput; }
    void FollowOutput(bool follow);

    /// Member 62: `Output` ends lines with CR. Default: true.
    bool EndLines() const { return mEndLines; }
    void EndLines(bool end) { mEndLines = end; }

    /// Member 6: a line longer than the screen width continues in the next row instead of
    /// overwriting its last column. Default: true; the far end can switch it too.
    bool AutoWrap() const { return mScreen.modes.autoWrap; }
    void AutoWrap(bool wrap) { mScreen.modes.autoWrap = wrap; }

    /// Member 55: the kind of flow control. Only 0 (none) is supported; raises RuntimeError
    /// 380 for any other value.
    int Handshake() const { return 0; }
    void Handshake(int kind);

    /// Member 112: shows typed and transmitted text at once, instead of when the far end
    /// echoes it. Default: false.
    bool LocalEcho() const { return mLocalEcho; }
    void LocalEcho(bool echo) { mLocalEcho = echo; }

    /// Member 113: a received CR also moves to the next row, for far ends that send
    /// no LF. Default: false.
    bool AutoLineFeed() const { return mScreen.modes.returnFeeds; }
    void AutoLineFeed(bool feed) { mScreen.modes.returnFeeds = feed; }

    /// Member 121, by command: when the context menu offers it. Default: WhenUseful.
    CommandOffer CommandMode(TerminalCommand command) const;
    void CommandMode(TerminalCommand command, CommandOffer offer);

    /// The user has invoked a command. A handler that sets `handled` has performed it;
    /// otherwise the terminal does.
    Event<TerminalCommand, bool&> Command{[this] { return KeepParent(); }};

    // --- user input ---------------------------------------------------------------------------

    /// The current context menu, top to bottom.
    std::vector<OfferedCommand> ContextMenu() const;
    /// Invokes an entry of the context menu.
    void Invoke(TerminalCommand command);

    /// Typed bytes in the ANSI code page; Enter is CR. No effect on a closed port.
    void Key(std::string_view bytes);
    /// Typed UTF-8 text.
    void Type(const std::string& text);

    void SelectAll();
    /// Selects the text between `anchor` and `end`, in either order.
    void Select(TextPosition anchor, TextPosition end);
    /// The selected text, UTF-8.
    std::string SelectedText() const;
    /// Without a selection, leaves the clipboard unchanged.
    void Copy();
    /// Types the clipboard's text, with Enter for each line end.
    void Paste();

    // --- state to paint -----------------------------------------------------------------------

    TerminalScreen& Screen() { return mScreen; }
    const TerminalSelection& Selection() const { return mSelection; }

    /// The line in the first row of the view: that of the screen unless the view is scrolled up.
    std::int64_t FirstShownLine() const;
    void ScrollTo(std::int64_t firstLine);

    /// Sets the size in characters that fits into the control.
    void ScreenSize(int columns, int rows);

    /// Moves the control. Raises RuntimeError 380 for a size below zero.
    void Move(const vantor::Place& place);

private:
    void Open();
    void Close();
    void TakeInput();
    void Show(std::string_view bytes);
    void Capture(std::string_view bytes);
    void Send(std::string_view bytes);
    void KeepSending();
    void Clear();
    bool Useful(TerminalCommand command) const;

    Platform& mPlatform;
    BufferedPort mPort;
    TerminalScreen mScreen;
    TerminalParser mParser{mScreen};
    TerminalSelection mSelection{mScreen};
    std::optional<std::int64_t> mView;  // the first line of a view that is scrolled up
    std::string mCaptureFile;
    std::unique_ptr<OutputFile> mCapture;
    std::array<CommandOffer, 12> mOffers{};  // by command
    TimerId mSendTimer = 0;
    bool mFollowOutput = false;
    bool mEndLines = true;
    bool mLocalEcho = false;
};

}  // namespace vantor
