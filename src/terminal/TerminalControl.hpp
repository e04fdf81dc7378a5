// The serial terminal control: a port, a screen, a keyboard, capture to a file, and the commands of
// a context menu. It works without a peer, which only paints the screen and forwards user input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/Control.hpp"
#include "controls/Event.hpp"
#include "platform/Platform.hpp"
#include "support/FunctionRef.hpp"
#include "terminal/TerminalEcho.hpp"
#include "terminal/TerminalMenu.hpp"
#include "terminal/engine/TerminalParser.hpp"
#include "terminal/engine/TerminalScreen.hpp"
#include "terminal/engine/TextEncoding.hpp"
#include "terminal/options/TerminalOptions.hpp"
#include "terminal/session/TerminalSession.hpp"
#include "terminal/view/TerminalViewport.hpp"

namespace vantor {

/// Member numbers are those of the interface of the vendor's terminal. Bytes in both directions
/// pass unchanged; the screen shows them as characters of the line's encoding.
/// Line errors are not raised: a failed open shows only in `PortOpen`, a lost device also in a line
/// of the text.
/// The terminal beeps when typed input cannot be sent. All beeps together are limited to four per
/// second.
///
/// Peers get `Property::Value` when text has arrived (see `TerminalViewport::Dirty`; a peer calls
/// `Clean` after painting) and `Property::Repaint` when everything must be repainted.
class TerminalControl : public Control, private SessionOwner {
public:
    TerminalControl(Form& parent, std::string name, Platform& platform);

    /// Its `settings` is member 1, its `name` member 28. Opened and closed by commands only.
    BufferedPort& Port() { return mSession.Port(); }
    /// Member 88: the port is open.
    bool PortOpen() const { return mSession.PortOpen(); }

    /// Member 116: performs a command without raising `Command`. Opening an open port does nothing.
    /// Closing first shows and captures the input received so far.
    void PerformCommand(TerminalCommand command);

    /// Waits at most 2 seconds until all queued output is on the line, before the user's close.
    /// Does not pump messages, because the windows may be about to be destroyed.
    void DrainOutput() { mSession.DrainOutput(); }
    /// True when the driver has accepted everything that was sent.
    bool FlushPending() { return mSession.FlushPending(); }
    /// Discards what the driver has not accepted, except the rest of a partly sent line.
    void DropPendingLines() { mSession.DropPendingLines(); }

    /// See TerminalSession. DTR and RTS are asserted after each open.
    void Dtr(bool asserted) { mSession.Dtr(asserted); }
    bool Dtr() const { return mSession.Dtr(); }
    void Rts(bool asserted) { mSession.Rts(asserted); }
    bool Rts() const { return mSession.Rts(); }
    std::optional<ModemLines> Lines() { return mSession.Lines(); }
    LineErrors Errors() { return mSession.Errors(); }

    /// Member 16: see TerminalSession::CaptureFile.
    const std::string& CaptureFile() const { return mSession.CaptureFile(); }
    void CaptureFile(const std::string& path) { mSession.CaptureFile(path); }

    /// Member 84: transmits one line unchanged, followed by a CR.
    void Output(std::string_view line);

    /// Member 49: while true, the view stays at the newest text, to follow a long transmission.
    /// Otherwise a view that was scrolled up stays where it is.
    bool FollowOutput() const { return mFollowOutput; }
    void FollowOutput(bool follow);

    /// Member 62: `Output` ends lines with CR.
    bool EndLines = true;

    /// Member 55: the kind of flow control. Raises RuntimeError 380 for any but 0 (none).
    void Handshake(int kind);

    /// Member 112: shows typed and transmitted text when it is sent, instead of when the far end
    /// echoes it. Control characters are shown as "^[".
    bool LocalEcho = false;

    /// What the user has chosen. Replaces `LocalEcho`, member 113 and the flow control of the port,
    /// which is used at its next open.
    const TerminalOptions& Options() const { return mOptions; }
    void Options(const TerminalOptions& options);

    /// Member 121 with the value 2: the context menu offers `command` at any time. Without it, only
    /// while it has an effect; greyed otherwise.
    void OfferAlways(TerminalCommand command);

    /// The user has invoked a command. A handler that sets `handled` has performed it;
    /// otherwise the terminal does.
    Event<TerminalCommand, bool&> Command{[this] { return KeepParent(); }};

    /// The port is open again after a loss, without a command.
    Event<> Reopened{[this] { return KeepParent(); }};

    // --- user input ---------------------------------------------------------------------------

    /// The current context menu, top to bottom.
    std::vector<OfferedCommand> ContextMenu();
    /// Invokes an entry of the context menu.
    void Invoke(TerminalCommand command);

    /// Bytes as typed, in the line's encoding. Beeps if the port is closed. A lone ESC during a
    /// paced paste ends that instead, and is not sent.
    void Key(std::string_view bytes);
    /// UTF-8 text as typed. Beeps and sends nothing when the encoding lacks a character of it.
    void Type(const std::string& text);
    /// Sends `bytes` unchanged. Beeps if the port is closed. See ParseBytes.
    void SendBytes(std::string_view bytes);
    /// Sends a break of 250 ms, without waiting for its end. Beeps if the port is closed.
    void SendBreak();
    /// The encoding of the line.
    const TextEncoding& Encoding() const { return mEncoding; }

    void SelectAll();
    /// Selects the text between `anchor` and `end`, in either order.
    void Select(TextPosition anchor, TextPosition end);
    /// The selected text, UTF-8.
    std::string SelectedText() const;
    /// Copies the selection; leaves the clipboard unchanged when nothing is selected.
    void Copy();
    /// Types the clipboard's text, each of its line ends as Enter. A text with a character that
    /// the encoding lacks is refused as a whole: a box names the character and its line. If the
    /// user has chosen so, a box asks before more than 20 lines, and a line is sent every 50 ms.
    void Paste();
    /// Lines of a paced paste wait to be sent.
    bool Pasting() const { return mSession.Pasting(); }

    // --- state to paint -----------------------------------------------------------------------

    /// Its modes `autoWrap` and `returnFeeds` are members 6 and 113.
    TerminalScreen& Screen() { return mScreen; }
    /// Rows, cursor, marks and scroll range to paint, the same in every view mode. A peer changes
    /// it through the functions below, and calls its `Clean`.
    TerminalViewport& View() { return mViewport; }
    const TerminalViewport& View() const { return mViewport; }
    const TerminalSelection& Selection() const { return mViewport.Selection(); }
    std::int64_t FirstShownLine() const { return mViewport.FirstShownLine(); }

    // --- the view -----------------------------------------------------------------------------

    void ScrollTo(std::int64_t firstLine);
    void Scroll(ScrollStep step);
    void ScrollBy(std::int64_t lines);
    /// See TerminalViewport::Wheel.
    void Wheel(int movement, int linesPerNotch);

    /// The mouse button goes down: ends the selection and begins one by character, word (double
    /// click) or line (triple click), or a rectangle (Alt).
    void BeginSelecting(MouseCell at, SelectBy by = SelectBy::Character, bool rectangular = false);
    /// The mouse moves while its button is down, or clicks with Shift: extends the selection in the
    /// same units. A peer scrolls while the mouse is above or below its window.
    void ExtendSelection(MouseCell at);
    void Unselect();

    /// See TerminalViewport::Find. Repaints.
    Found Find(std::string_view text, FindOptions options = {});
    void EndFind();

    /// Writes the whole text of the view mode to a file: UTF-8, CR LF. Raises what Files::Create
    /// and OutputFile::Write do.
    void SaveScrollback(const std::string& path);
    /// Drops the history and the kept bytes; the screen stays.
    void ClearScrollback();

    /// The outer size of a control with so many characters of text; all 0 where nothing is drawn.
    Size SizeFor(int columns, int rows) const {
        return TerminalSize(columns + mViewport.Gutter(), rows);
    }
    /// Sets the size of the view in characters, time stamps included.
    void ScreenSize(int columns, int rows);

private:
    void Received(std::string_view bytes, std::int64_t timeMs) override;
    void Sent(std::string_view bytes) override;
    void Notice(const std::string& text) override;
    void PortReopened() override;
    std::shared_ptr<void> KeepAlive() const override { return KeepParent(); }

    void Change(FunctionRef<void()> write);
    void Transmit(FunctionRef<void()> send);
    void UseEncoding();
    void Clear();
    void Beep();
    /// Repaints when `all` says that the whole window has changed.
    void Repaint(bool all = true);
    bool RefusePaste(const std::string& text);
    bool DeclinesPaste(const std::string& text);

    Platform& mPlatform;
    TerminalSession mSession;
    TerminalScreen mScreen;
    TerminalParser mParser{mScreen};
    TerminalEcho mEcho{mScreen};
    TextEncoding mEncoding;
    TerminalOptions mOptions;
    std::string mReplies;  // of the parser, sent after it
    TerminalViewport mViewport{mScreen};
    TerminalCommands mOfferedAlways;
    std::optional<std::uint32_t> mBeepedAt;  // milliseconds of the clock
    bool mFollowOutput = false;
};

}  // namespace vantor
