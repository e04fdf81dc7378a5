#include "terminal/TerminalMenu.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/StringTable.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

using enum TerminalCommand;

constexpr std::array kFontPoints = {
    kSmallestPoints, 7, 8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 28, 32, kLargestPoints};

/// Builds the menu from the texts and the state.
class Menu {
public:
    Menu(const StringTable& strings, const TerminalMenuState& state)
        : mStrings(strings), mState(state) {}

    std::vector<OfferedCommand> All() const {
        std::vector<OfferedCommand> menu = {Entry(Open, Str::TerminalOpenPort),
                                            Entry(Close, Str::TerminalClosePort),
                                            Entry(Settings, Str::TerminalPortSettings),
                                            Group(Entry(Copy, Str::TerminalCopy)),
                                            Entry(Paste, Str::TerminalPaste),
                                            Entry(SelectAll, Str::TerminalSelectAll),
                                            Group(Entry(Clear, Str::TerminalClearScreen)),
                                            Entry(Reset, Str::TerminalReset),
                                            Group(Submenu(Str::TerminalView, View())),
                                            Entry(Find, Str::TerminalFind),
                                            Entry(SaveScrollback, Str::TerminalSaveScrollback),
                                            Entry(ClearScrollback, Str::TerminalClearScrollback),
                                            Group(Submenu(Str::TerminalLine, Line())),
                                            Entry(SendBytes, Str::TerminalSendBytes)};
        if (!mState.captureFile.empty()) menu.push_back(Capturing());
        menu.push_back(Entry(TerminalSettings, Str::TerminalSettingsEntry));
        return menu;
    }

private:
    std::vector<OfferedCommand> View() const {
        const TerminalOptions& chosen = mState.options;
        return {Checked(ViewText, Str::ViewText, chosen.view == ViewMode::Text),
                Checked(ViewControlCharacters, Str::ViewControlCharacters,
                        chosen.view == ViewMode::ControlCharacters),
                Checked(ViewHex, Str::ViewHex, chosen.view == ViewMode::Hex),
                Group(Submenu(Str::ViewTimeStamps, Stamps())),
                Checked(DarkScheme, Str::ViewDarkScheme, chosen.darkScheme),
                Group(Entry(LargerText, Str::ViewLargerText)),
                Entry(SmallerText, Str::ViewSmallerText),
                Entry(NormalText, Str::ViewNormalText)};
    }

    std::vector<OfferedCommand> Stamps() const {
        const TimeStamps chosen = mState.options.timeStamps;
        return {
            Checked(TimeStampsOff, Str::TimeStampsOff, chosen == TimeStamps::Off),
            Checked(TimeStampsTimeOfDay, Str::TimeStampsTimeOfDay, chosen == TimeStamps::TimeOfDay),
            Checked(TimeStampsSincePrevious, Str::TimeStampsSincePrevious,
                    chosen == TimeStamps::SincePrevious)};
    }

    std::vector<OfferedCommand> Line() const {
        const ModemLines lines = mState.lines.value_or(ModemLines{});
        return {Entry(SendBreak, Str::LineSendBreak),
                Group(Output(Dtr, Str::LineDtr, mState.dtr)),
                Output(Rts, Str::LineRts, mState.rts),
                Group(Input(Str::LineCts, lines.cts)),
                Input(Str::LineDsr, lines.dsr),
                Input(Str::LineDcd, lines.dcd),
                Input(Str::LineRi, lines.ri),
                Group(Count(Str::LineFramingErrors, mState.errors.framing)),
                Count(Str::LineParityErrors, mState.errors.parity)};
    }

    OfferedCommand Entry(TerminalCommand command, Str text) const {
        return {command, mStrings.Text(text), Offered(command)};
    }

    OfferedCommand Checked(TerminalCommand command, Str text, bool checked) const {
        OfferedCommand entry = Entry(command, text);
        entry.checked = checked;
        return entry;
    }

    OfferedCommand Submenu(Str text, std::vector<OfferedCommand> children) const {
        return {.caption = mStrings.Text(text), .children = std::move(children)};
    }

    /// A line that the terminal sets.
    OfferedCommand Output(TerminalCommand command, Str text, bool asserted) const {
        return Checked(command, text, asserted && mState.lines);
    }

    /// A line that the terminal reads.
    OfferedCommand Input(Str text, bool asserted) const {
        return {.caption = mStrings.Text(text),
                .enabled = mState.lines.has_value(),
                .checked = asserted};
    }

    OfferedCommand Count(Str text, std::uint64_t count) const {
        return {.caption = Filled(text, std::to_string(count)), .enabled = mState.portOpen};
    }

    OfferedCommand Capturing() const {
        std::string name;
        for (const char c : FileNameOf(mState.captureFile))
            name += c == '&' ? "&&" : std::string(1, c);
        return Group({.caption = Filled(Str::TerminalCapturing, name)});
    }

    std::string Filled(Str text, const std::string& value) const {
        std::string filled = mStrings.Text(text);
        return filled.replace(filled.find("%1"), 2, value);
    }

    static OfferedCommand Group(OfferedCommand entry) {
        entry.startsGroup = true;
        return entry;
    }

    bool Offered(TerminalCommand command) const {
        if (mState.always.test(static_cast<std::size_t>(command))) return true;
        switch (command) {
            case Open:
                return !mState.portOpen;
            case Copy:
                return mState.selected;
            case Dtr:
            case Rts:
                return mState.lines.has_value();
            case Close:
            case Paste:
            case SendBreak:
            case SendBytes:
                return mState.portOpen;
            default:
                return true;
        }
    }

    const StringTable& mStrings;
    const TerminalMenuState& mState;
};

/// The next size of the list above or below `points`, or the last one.
int NextPoints(int points, bool larger) {
    if (larger) {
        const auto* const next = std::ranges::upper_bound(kFontPoints, points);
        return next == kFontPoints.end() ? kFontPoints.back() : *next;
    }
    const auto* const next = std::ranges::lower_bound(kFontPoints, points);
    return next == kFontPoints.begin() ? kFontPoints.front() : *(next - 1);
}

}  // namespace

std::vector<OfferedCommand> MakeTerminalMenu(const StringTable& strings,
                                             const TerminalMenuState& state) {
    return Menu(strings, state).All();
}

bool ChooseOption(TerminalCommand command, TerminalOptions& options, int designedPoints) {
    const int points = options.fontPoints == 0 ? designedPoints : options.fontPoints;
    switch (command) {
        case ViewText:
            options.view = ViewMode::Text;
            return true;
        case ViewControlCharacters:
            options.view = ViewMode::ControlCharacters;
            return true;
        case ViewHex:
            options.view = ViewMode::Hex;
            return true;
        case TimeStampsOff:
            options.timeStamps = TimeStamps::Off;
            return true;
        case TimeStampsTimeOfDay:
            options.timeStamps = TimeStamps::TimeOfDay;
            return true;
        case TimeStampsSincePrevious:
            options.timeStamps = TimeStamps::SincePrevious;
            return true;
        case DarkScheme:
            options.darkScheme = !options.darkScheme;
            return true;
        case LargerText:
        case SmallerText:
            options.fontPoints = NextPoints(points, command == LargerText);
            return true;
        case NormalText:
            options.fontPoints = 0;
            return true;
        default:
            return false;
    }
}

}  // namespace vantor
