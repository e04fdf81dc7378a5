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
#include "terminal/TextFile.hpp"

namespace vantor {
namespace {

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
      mSession(*this, platform) {
    const TextEncoding encoding(LineEncoding::System, platform.codePage);
    mParser.Encoding(encoding);
    mViewport.Decode(ByteDecoder(encoding));
    Port().name = "COM1";
    Port().settings = "9600,N,8,1";
}

// --- received and sent -----------------------------------------------------------------------

void TerminalControl::Received(std::string_view bytes) {
    const std::int64_t now = mPlatform.clock.LocalMilliseconds();
    mScreen.Now(now);
    mViewport.Received(bytes, now);
    Show(bytes);
}

void TerminalControl::Show(std::string_view bytes) {
    const std::uint64_t bells = mParser.Bells();
    mViewport.BeforeChange();
    mParser.Write(bytes);
    mViewport.Shown();
    if (mParser.Bells() != bells) Beep();
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

void TerminalControl::Send(std::string_view bytes) {
    if (!PortOpen()) return;
    mSession.Send(bytes);
    if (LocalEcho) Show(WithLineEnds(bytes, "\r\n"));
}

void TerminalControl::Output(std::string_view line) {
    Send(std::string(line) + (EndLines ? "\r" : ""));
}

void TerminalControl::Key(std::string_view bytes) {
    if (!PortOpen()) return Beep();
    Scroll(ScrollStep::End);
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
            return mSession.Open();
        case TerminalCommand::Close:
            return mSession.Close();
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

bool TerminalControl::Offered(TerminalCommand command) const {
    if (mOfferedAlways.test(static_cast<std::size_t>(command))) return true;
    if (command == TerminalCommand::Open) return !PortOpen();
    if (command == TerminalCommand::Close || command == TerminalCommand::Paste) return PortOpen();
    return command != TerminalCommand::Copy || !mViewport.Selection().Empty();
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

// --- the view --------------------------------------------------------------------------------

void TerminalControl::Repaint(bool all) {
    if (all) Changed(Property::Repaint);
}

void TerminalControl::ChooseView(const TerminalOptions& options) {
    Repaint(mViewport.Choose(options));
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
