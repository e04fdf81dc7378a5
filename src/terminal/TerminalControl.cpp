#include "terminal/TerminalControl.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "controls/Form.hpp"
#include "platform/Clipboard.hpp"
#include "platform/Clock.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/StringTable.hpp"
#include "support/errors/RuntimeError.hpp"
#include "support/text/Unicode.hpp"
#include "terminal/view/TextFile.hpp"

namespace vantor {
namespace {

constexpr std::uint32_t kBeepIntervalMs = 250;
constexpr std::int64_t kMostUnasked = 20;  // lines of a paste

// By EnterKey.
constexpr std::array<std::string_view, 3> kEnters = {"\r", "\n", "\r\n"};

/// `text` with every CR, LF and CR LF replaced by `lineEnd`.
std::string WithLineEnds(std::string_view text, std::string_view lineEnd) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && i > 0 && text[i - 1] == '\r') continue;
        if (text[i] == '\r' || text[i] == '\n')
            result += lineEnd;
        else
            result += text[i];
    }
    return result;
}

/// "→ (U+2192)". The code point is included because some characters are invisible.
std::string NameOf(std::string_view character) {
    std::string_view rest = character;
    const auto code = static_cast<unsigned>(TakeCodePoint(rest));
    std::array<char, 16> number{};
    const int length = std::snprintf(number.data(), number.size(), " (U+%04X)", code);
    return std::string(character) + std::string(number.data(), static_cast<std::size_t>(length));
}

/// `text` with its `mark` replaced.
std::string Replaced(std::string text, std::string_view mark, const std::string& value) {
    return text.replace(text.find(mark), mark.size(), value);
}

}  // namespace

TerminalControl::TerminalControl(Form& parent, std::string name, Platform& platform)
    : Control(parent, ControlKind::Terminal, std::move(name)),
      mPlatform(platform),
      mSession(*this, platform) {
    UseEncoding();
    Port().name = "COM1";
    Port().settings = "9600,N,8,1";
}

// --- received and sent -----------------------------------------------------------------------

void TerminalControl::Received(std::string_view bytes, std::int64_t timeMs) {
    mScreen.Now(timeMs);
    mViewport.Received(bytes, timeMs);
    const std::uint64_t bells = mParser.Bells();
    Change([&] { mParser.Write(bytes); });
    if (mParser.Bells() != bells) Beep();
    if (!mReplies.empty()) mSession.Reply(std::exchange(mReplies, {}));
}

void TerminalControl::Sent(std::string_view bytes) {
    mScreen.Now(mPlatform.clock.LocalMilliseconds());
    if (LocalEcho) Change([&] { mEcho.Show(bytes); });
}

void TerminalControl::Notice(const std::string& text) {
    mScreen.Now(mPlatform.clock.LocalMilliseconds());
    Change([&] { mEcho.ShowLine(text); });
}

void TerminalControl::PortReopened() {
    Reopened.Raise();
}

/// Runs `write`, which changes the screen.
void TerminalControl::Change(FunctionRef<void()> write) {
    mViewport.BeforeChange();
    write();
    mViewport.Shown();
    if (mFollowOutput) mViewport.ScrollToNewest();
    Changed(Property::Value);
    if (!mViewport.SelectionLost()) return;
    mViewport.Selection().Lose();
    Repaint();
}

void TerminalControl::Beep() {
    const std::uint32_t now = mPlatform.clock.Milliseconds();
    if (mBeepedAt && now - *mBeepedAt < kBeepIntervalMs) return;
    mBeepedAt = now;
    mPlatform.boxes.Beep();
}

void TerminalControl::Output(std::string_view line) {
    mSession.Send(std::string(line) + (EndLines ? "\r" : ""));
}

void TerminalControl::Key(std::string_view bytes) {
    if (bytes == "\x1B" && Pasting()) return mSession.AbortPaste();
    Transmit([&] { mSession.Send(bytes); });
}

void TerminalControl::Type(const std::string& text) {
    const std::optional<std::string> bytes = mEncoding.Encode(text);
    if (!bytes) return Beep();
    Key(*bytes);
}

/// Runs `send`, which sends what the user has entered.
void TerminalControl::Transmit(FunctionRef<void()> send) {
    if (!PortOpen()) return Beep();
    Scroll(ScrollStep::End);
    send();
    if (!PortOpen()) Beep();  // a lost device is detected only on use
}

void TerminalControl::SendBytes(std::string_view bytes) {
    Transmit([&] { mSession.Send(bytes); });
}

void TerminalControl::SendBreak() {
    Transmit([this] { mSession.SendBreak(); });
}

// --- options ---------------------------------------------------------------------------------

void TerminalControl::Options(const TerminalOptions& options) {
    const TerminalOptions before = std::exchange(mOptions, options);
    LocalEcho = options.localEcho;
    mScreen.modes.returnFeeds = options.returnFeeds;
    mParser.Reply = {};
    if (options.answersQueries)
        mParser.Reply = [this](std::string_view answer) { mReplies += answer; };
    mSession.Options(options);
    if (options.flowControl != before.flowControl) Port().flowControl = options.flowControl;
    if (options.encoding != before.encoding) UseEncoding();
    mViewport.Choose(options);
    Repaint(options != before);
}

void TerminalControl::UseEncoding() {
    mEncoding = {mOptions.encoding, mPlatform.codePage};
    mParser.Encoding(mEncoding);
    mEcho.Encoding(mEncoding);
    mViewport.Decode(ByteDecoder(mEncoding));
}

// --- commands --------------------------------------------------------------------------------

void TerminalControl::PerformCommand(TerminalCommand command) {
    switch (command) {
        case TerminalCommand::Copy:
            return Copy();
        case TerminalCommand::Paste:
            return Paste();
        case TerminalCommand::SelectAll:
            return SelectAll();
        case TerminalCommand::Open:
            return mSession.Open();
        case TerminalCommand::Close:
            return mSession.Close();
        case TerminalCommand::Clear:
            Change([this] { mScreen.NewPage(); });
            return Clear();
        case TerminalCommand::Reset:
            Change([this] { mScreen.Reset(); });
            return Clear();
        case TerminalCommand::ClearScrollback:
            return ClearScrollback();
        case TerminalCommand::SendBreak:
            return SendBreak();
        case TerminalCommand::Dtr:
            return Dtr(!Dtr());
        case TerminalCommand::Rts:
            return Rts(!Rts());
        default:  // performed by the owner
            return;
    }
}

/// Also resets what depends on the screen: a partial escape sequence and the scroll position.
void TerminalControl::Clear() {
    mParser.Reset();
    mViewport.ScrollToNewest();
    Changed(Property::Repaint);
}

void TerminalControl::Invoke(TerminalCommand command) {
    const std::shared_ptr<void> keepAlive = KeepParent();
    bool handled = false;
    // The owner's handler is running another command and has not seen this one.
    if (!Command.Raise(command, handled)) return;
    if (!handled && !Parent().Gone()) PerformCommand(command);
}

void TerminalControl::Handshake(int kind) {
    if (kind != 0) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
}

void TerminalControl::FollowOutput(bool follow) {
    mFollowOutput = follow;
    if (follow) Scroll(ScrollStep::End);
}

void TerminalControl::OfferAlways(TerminalCommand command) {
    mOfferedAlways.set(static_cast<std::size_t>(command));
}

std::vector<OfferedCommand> TerminalControl::ContextMenu() {
    return MakeTerminalMenu(mPlatform.strings, {.portOpen = PortOpen(),
                                                .selected = !mViewport.Selection().Empty(),
                                                .always = mOfferedAlways,
                                                .options = mOptions,
                                                .dtr = Dtr(),
                                                .rts = Rts(),
                                                .lines = Lines(),
                                                .errors = Errors(),
                                                .captureFile = CaptureFile()});
}

// --- selection and view ----------------------------------------------------------------------

void TerminalControl::SelectAll() {
    mViewport.Selection().SetAll();
    Repaint();
}

void TerminalControl::Select(TextPosition anchor, TextPosition end) {
    mViewport.Selection().Set(anchor, end);
    Repaint();
}

void TerminalControl::BeginSelecting(MouseCell at, SelectBy by, bool rectangular) {
    mViewport.Selection().Begin(mViewport.PointAt(at), by, rectangular);
    Repaint();
}

void TerminalControl::ExtendSelection(MouseCell at) {
    mViewport.Selection().ExtendTo(mViewport.PointAt(at));
    Repaint();
}

void TerminalControl::Unselect() {
    const bool selected = !mViewport.Selection().Empty();
    mViewport.Selection().Clear();
    Repaint(selected);
}

std::string TerminalControl::SelectedText() const {
    return mViewport.Selection().Text();
}

void TerminalControl::Copy() {
    const std::string text = SelectedText();
    if (!text.empty()) mPlatform.clipboard.Text(text);
}

void TerminalControl::Paste() {
    if (!PortOpen()) return Beep();
    const std::shared_ptr<void> keepAlive = KeepParent();
    const std::string text = WithLineEnds(mPlatform.clipboard.Text(), "\r");
    if (RefusePaste(text) || DeclinesPaste(text) || Parent().Gone()) return;
    // What Enter sends, also after the far end has asked for CR LF.
    const std::string_view enter = mScreen.modes.lineFeedReturns
                                       ? "\r\n"
                                       : kEnters.at(static_cast<std::size_t>(mOptions.enterKey));
    const std::string bytes = mEncoding.Encode(WithLineEnds(text, enter)).value_or(std::string());
    Transmit([&] {
        if (mOptions.pastePace == PastePace::Line)
            mSession.SendPaced(bytes, enter);
        else
            mSession.Send(bytes);
    });
}

/// True when `text` cannot be sent; a message box has then given the reason.
bool TerminalControl::RefusePaste(const std::string& text) {
    const std::string_view missing = mEncoding.FirstMissing(text);
    if (missing.empty()) return false;
    const auto line = std::count(text.data(), missing.data(), '\r') + 1;
    std::string told = mPlatform.strings.Text(Str::PasteRefused);
    told = Replaced(std::move(told), "%1", NameOf(missing));
    told = Replaced(std::move(told), "%2", std::to_string(line));
    mPlatform.boxes.Show(
        {.text = told, .icon = BoxIcon::Exclamation, .owner = Parent().WindowHandle()});
    return true;
}

/// True when the user, asked because `text` is long, does not want to send it.
bool TerminalControl::DeclinesPaste(const std::string& text) {
    const auto lines = std::ranges::count(text, '\r') + (text.ends_with('\r') ? 0 : 1);
    if (!mOptions.askBeforeLongPaste || lines <= kMostUnasked) return false;
    return mPlatform.boxes.Show({.text = Replaced(mPlatform.strings.Text(Str::LongPaste), "%1",
                                                  std::to_string(lines)),
                                 .icon = BoxIcon::Question,
                                 .buttons = BoxButtons::YesNo,
                                 .owner = Parent().WindowHandle(),
                                 .declinesByDefault = true}) != BoxAnswer::Yes;
}

// --- the view --------------------------------------------------------------------------------

void TerminalControl::Repaint(bool all) {
    if (all) Changed(Property::Repaint);
}

void TerminalControl::ScrollTo(std::int64_t firstLine) {
    Repaint(mViewport.ScrollTo(firstLine));
}

void TerminalControl::Scroll(ScrollStep step) {
    Repaint(mViewport.Scroll(step));
}

void TerminalControl::ScrollBy(std::int64_t lines) {
    Repaint(mViewport.ScrollBy(lines));
}

void TerminalControl::Wheel(int movement, int linesPerNotch) {
    Repaint(mViewport.Wheel(movement, linesPerNotch));
}

Found TerminalControl::Find(std::string_view text, FindOptions options) {
    const Found found = mViewport.Find(text, options);
    Repaint();
    return found;
}

void TerminalControl::EndFind() {
    mViewport.EndFind();
    Repaint();
}

void TerminalControl::SaveScrollback(const std::string& path) {
    WriteText(mViewport.Text(), *mPlatform.files.Create(path));
}

void TerminalControl::ClearScrollback() {
    mViewport.ClearScrollback();
    Repaint();
}

void TerminalControl::ScreenSize(int columns, int rows) {
    mViewport.Size(columns, rows);
    Changed(Property::Value);
}

}  // namespace vantor
