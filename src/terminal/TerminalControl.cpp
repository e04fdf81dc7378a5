#include "terminal/TerminalControl.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "controls/Form.hpp"
#include "platform/Clipboard.hpp"
#include "platform/Clock.hpp"
#include "platform/CodePage.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/StringTable.hpp"
#include "support/Traps.hpp"
#include "support/errors/RuntimeError.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

// With continuous input, control returns to the message loop after this many bytes.
constexpr std::size_t kMostAtOnce = 65'536;
constexpr auto kAll = static_cast<std::size_t>(-1);
constexpr std::uint32_t kSendIntervalMs = 10;
constexpr std::uint32_t kDrainMs = 2000;
constexpr std::uint32_t kDrainStepMs = 5;
constexpr std::uint32_t kBeepIntervalMs = 250;

struct MenuRow {
    TerminalCommand command;
    Str text;
    bool startsGroup;
};

constexpr std::array kMenu = {MenuRow{TerminalCommand::Open, Str::TerminalOpenPort, false},
                              MenuRow{TerminalCommand::Close, Str::TerminalClosePort, false},
                              MenuRow{TerminalCommand::Settings, Str::TerminalPortSettings, false},
                              MenuRow{TerminalCommand::Copy, Str::TerminalCopy, true},
                              MenuRow{TerminalCommand::Paste, Str::TerminalPaste, false},
                              MenuRow{TerminalCommand::SelectAll, Str::TerminalSelectAll, false},
                              MenuRow{TerminalCommand::Clear, Str::TerminalClearScreen, true},
                              MenuRow{TerminalCommand::Reset, Str::TerminalReset, false}};

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

/// The code page converts unsupported characters to "?".
bool LacksAny(const CodePage& codePage, const std::string& utf8) {
    return std::ranges::count(codePage.ToAnsi(utf8), '?') != std::ranges::count(utf8, '?');
}

}  // namespace

TerminalControl::TerminalControl(Form& parent, std::string name, Platform& platform)
    : Control(parent, ControlKind::Terminal, std::move(name)),
      mPlatform(platform),
      mPort(platform.ports),
      mSendTimer(platform.pump, kSendIntervalMs, [this] { KeepSending(); }) {
    mParser.Encoding({LineEncoding::System, platform.codePage});
    mPort.name = "COM1";
    mPort.settings = "9600,N,8,1";
}

// --- the port --------------------------------------------------------------------------------

void TerminalControl::Open() {
    mPort.InBufferCount();  // closes the port if its device is lost
    if (PortOpen()) return;
    mPort.Open([this] { TakeInput(kMostAtOnce); });
}

void TerminalControl::Close() {
    const std::shared_ptr<void> keepAlive = KeepParent();
    TakeInput(kAll);
    mPort.Close();
}

void TerminalControl::DrainOutput() {
    Clock& clock = mPlatform.clock;
    const std::uint32_t start = clock.Milliseconds();
    while (mPort.OutBufferCount() > 0 && clock.Milliseconds() - start < kDrainMs)
        clock.Sleep(kDrainStepMs);
}

void TerminalControl::TakeInput(std::size_t most) {
    // The window can be closed while the box that reports a failed capture is open.
    const std::shared_ptr<void> keepAlive = KeepParent();
    const std::string bytes = mPort.Input(most);
    if (bytes.empty()) return;  // the device is lost, or no input
    Show(bytes);
    Capture(bytes);
}

void TerminalControl::Show(std::string_view bytes) {
    const std::uint64_t bells = mParser.Bells();
    // Only text on the screen can be overwritten; lines in the history cannot change.
    const std::int64_t top = mScreen.TopLine();
    const std::string marked = mSelection.TextFrom(top);
    mParser.Write(bytes);
    if (mParser.Bells() != bells) Beep();
    if (mFollowOutput) mView.reset();
    Changed(Property::Value);
    const bool dropped = mSelection.To().line < mScreen.FirstLine();
    if (!mSelection.Empty() && (dropped || mSelection.TextFrom(top) != marked)) Select({}, {});
}

void TerminalControl::Beep() {
    const std::uint32_t now = mPlatform.clock.Milliseconds();
    if (mBeepedAt && now - *mBeepedAt < kBeepIntervalMs) return;
    mBeepedAt = now;
    mPlatform.boxes.Beep();
}

void TerminalControl::Capture(std::string_view bytes) {
    if (!mCapture.file) return;
    Trapped("TerminalControl.Capture", [&] {
        // Moved out during the write: a failed write must end the capture before the error box
        // opens, because more text arrives while that box is open.
        CaptureTarget target = std::exchange(mCapture, {});
        target.file->Write(bytes);
        mCapture = std::move(target);
    });
}

void TerminalControl::CaptureFile(const std::string& path) {
    const std::shared_ptr<void> keepAlive = KeepParent();
    TakeInput(kAll);
    // An open capture file must be closed before it can be created again.
    if (path.empty() || path == mCapture.path) mCapture = {};
    if (!path.empty()) mCapture = {path, mPlatform.files.Create(path)};
}

void TerminalControl::Send(std::string_view bytes) {
    if (!PortOpen()) return;
    mPort.Output(bytes);
    KeepSending();
    if (LocalEcho) Show(WithLineEnds(bytes, "\r\n"));
}

/// Sends the remainder in parts when the driver does not accept everything at once.
/// No timer runs while idle.
void TerminalControl::KeepSending() {
    mSendTimer.Enabled(!mPort.FlushPending());
}

void TerminalControl::Output(std::string_view line) {
    Send(std::string(line) + (EndLines ? "\r" : ""));
}

void TerminalControl::Key(std::string_view bytes) {
    if (!PortOpen()) return Beep();
    ScrollTo(mScreen.TopLine());
    Send(bytes);
    if (!PortOpen()) Beep();  // a lost device is detected only on use
}

void TerminalControl::Type(const std::string& text) {
    if (LacksAny(mPlatform.codePage, text)) return Beep();
    Key(mPlatform.codePage.ToAnsi(text));
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
            return Open();
        case TerminalCommand::Close:
            return Close();
        case TerminalCommand::Clear:
            mScreen.NewPage();
            return Clear();
        case TerminalCommand::Reset:
            mScreen.Reset();
            return Clear();
        case TerminalCommand::Settings:
            return;
    }
}

/// Also resets what depends on the screen: a partial escape sequence and the scroll position.
void TerminalControl::Clear() {
    mParser.Reset();
    mView.reset();
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
    if (follow) ScrollTo(mScreen.TopLine());
}

void TerminalControl::OfferAlways(TerminalCommand command) {
    mOfferedAlways.set(static_cast<std::size_t>(command));
}

bool TerminalControl::Offered(TerminalCommand command) const {
    if (mOfferedAlways.test(static_cast<std::size_t>(command))) return true;
    if (command == TerminalCommand::Open) return !PortOpen();
    if (command == TerminalCommand::Close || command == TerminalCommand::Paste) return PortOpen();
    return command != TerminalCommand::Copy || !mSelection.Empty();
}

std::vector<OfferedCommand> TerminalControl::ContextMenu() const {
    std::vector<OfferedCommand> menu;
    menu.reserve(kMenu.size());
    for (const auto& [command, text, startsGroup] : kMenu)
        menu.push_back({command, mPlatform.strings.Text(text), Offered(command), startsGroup});
    return menu;
}

// --- selection and view ----------------------------------------------------------------------

void TerminalControl::SelectAll() {
    mSelection.SetAll();
    Changed(Property::Repaint);
}

void TerminalControl::Select(TextPosition anchor, TextPosition end) {
    mSelection.Set(anchor, end);
    Changed(Property::Repaint);
}

std::string TerminalControl::SelectedText() const {
    return mSelection.Text();
}

void TerminalControl::Copy() {
    const std::string text = SelectedText();
    if (!text.empty()) mPlatform.clipboard.Text(text);
}

void TerminalControl::Paste() {
    const std::string text = WithLineEnds(mPlatform.clipboard.Text(), "\r");
    if (!PortOpen() || !RefusePaste(text)) Type(text);
}

/// True when `text` cannot be sent; a message box has then given the reason.
bool TerminalControl::RefusePaste(const std::string& text) {
    if (!LacksAny(mPlatform.codePage, text)) return false;
    int line = 1;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string character(FirstCharacter(rest));
        if (LacksAny(mPlatform.codePage, character)) {
            std::string told = mPlatform.strings.Text(Str::PasteRefused);
            told.replace(told.find("%1"), 2, NameOf(character));
            told.replace(told.find("%2"), 2, std::to_string(line));
            mPlatform.boxes.Show(
                {.text = told, .icon = BoxIcon::Exclamation, .owner = Parent().WindowHandle()});
            return true;
        }
        if (character == "\r") ++line;
        rest.remove_prefix(character.size());
    }
    return false;
}

std::int64_t TerminalControl::FirstShownLine() const {
    if (!mView) return mScreen.TopLine();
    return std::clamp(*mView, mScreen.FirstLine(), mScreen.TopLine());
}

void TerminalControl::ScrollTo(std::int64_t firstLine) {
    const std::int64_t before = FirstShownLine();
    mView = firstLine;
    if (firstLine >= mScreen.TopLine()) mView.reset();
    if (FirstShownLine() != before) Changed(Property::Repaint);
}

void TerminalControl::ScreenSize(int columns, int rows) {
    mScreen.Resize(columns, rows);
    Changed(Property::Value);
}

}  // namespace vantor
