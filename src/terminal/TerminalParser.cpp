#include "terminal/TerminalParser.hpp"

#include <algorithm>

namespace vantor {
namespace {

constexpr unsigned char kBell = 0x07;
constexpr unsigned char kCancel = 0x18;
constexpr unsigned char kSubstitute = 0x1A;
constexpr unsigned char kEscape = 0x1B;
constexpr unsigned char kDelete = 0x7F;
constexpr int kLargestParameter = 9999;
// An unterminated string must not consume the rest of the session.
constexpr std::size_t kLongestText = 4096;

bool IsControl(unsigned char byte) {
    return byte < ' ' || byte == kDelete;
}

bool IsIntermediate(unsigned char byte) {
    return byte >= ' ' && byte <= '/';
}

/// What the control characters do.
constexpr auto kControls = [] {
    std::array<void (TerminalScreen::*)(), ' '> controls{};
    controls['\b'] = &TerminalScreen::Backspace;
    controls['\t'] = &TerminalScreen::Tab;
    controls['\n'] = &TerminalScreen::LineFeed;
    controls['\v'] = &TerminalScreen::LineFeed;
    controls['\f'] = &TerminalScreen::NewPage;
    controls['\r'] = &TerminalScreen::CarriageReturn;
    return controls;
}();

/// The final byte of an escape sequence without parameters, and what it does.
struct Escape {
    char final;
    void (TerminalScreen::*apply)();
};
constexpr std::array kEscapes = {Escape{'7', &TerminalScreen::SaveCursor},
                                 Escape{'8', &TerminalScreen::RestoreCursor},
                                 Escape{'D', &TerminalScreen::LineFeed},
                                 Escape{'E', &TerminalScreen::LineFeed},
                                 Escape{'M', &TerminalScreen::ReverseLineFeed},
                                 Escape{'H', &TerminalScreen::SetTabStop},
                                 Escape{'c', &TerminalScreen::Reset}};

/// The final byte of a sequence that moves the cursor, and its rows and columns for a count of 1.
struct Movement {
    char final;
    int rows;
    int columns;
};
constexpr int kToFirstColumn = -TerminalScreen::kMostColumns;
constexpr std::array kMovements = {Movement{'A', -1, 0},
                                   Movement{'B', 1, 0},
                                   Movement{'e', 1, 0},
                                   Movement{'C', 0, 1},
                                   Movement{'a', 0, 1},
                                   Movement{'D', 0, -1},
                                   Movement{'E', 1, kToFirstColumn},
                                   Movement{'F', -1, kToFirstColumn}};

/// The final byte of a sequence with a count, and what it does.
struct Edit {
    char final;
    void (TerminalScreen::*apply)(int count);
};
constexpr std::array kEdits = {
    Edit{'X', &TerminalScreen::EraseCharacters},  Edit{'@', &TerminalScreen::InsertCharacters},
    Edit{'P', &TerminalScreen::DeleteCharacters}, Edit{'L', &TerminalScreen::InsertLines},
    Edit{'M', &TerminalScreen::DeleteLines},      Edit{'S', &TerminalScreen::ScrollUp},
    Edit{'T', &TerminalScreen::ScrollDown}};

}  // namespace

void TerminalParser::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        std::size_t taken = mState == State::Ground ? TakeCharacters(bytes) : 0;
        if (taken == 0) {
            if (mDecoder.Interrupt()) mScreen.Print({&kReplacementCharacter, 1});
            Take(static_cast<unsigned char>(bytes.front()));
            taken = 1;
        }
        bytes.remove_prefix(taken);
    }
}

std::size_t TerminalParser::TakeCharacters(std::string_view bytes) {
    std::array<char32_t, 256> characters;  // NOLINT(*-member-init): written by Decode
    const auto [taken, count] = mDecoder.Decode(bytes, characters);
    mScreen.Print({characters.data(), count});
    return taken;
}

void TerminalParser::Take(unsigned char byte) {
    if (byte == kCancel || byte == kSubstitute) {
        mState = State::Ground;
    } else if (byte == kEscape) {
        mState = State::Escape;
    } else if (mState == State::Text) {
        TakeText(byte);
    } else if (IsControl(byte)) {
        TakeControl(byte);  // also within a sequence, which continues after it
    } else if (byte > kDelete) {
        // No sequence contains such a byte: this one is incomplete, and text follows.
        mState = State::Ground;
        const char character = static_cast<char>(byte);
        TakeCharacters({&character, 1});
    } else if (mState == State::Escape) {
        TakeEscape(byte);
    } else if (mState == State::EscapeRest) {
        if (!IsIntermediate(byte)) mState = State::Ground;
    } else {
        TakeSequence(byte);
    }
}

void TerminalParser::TakeControl(unsigned char byte) {
    if (byte == kBell) ++mBells;
    if (byte < kControls.size() && kControls[byte]) (mScreen.*kControls[byte])();
}

void TerminalParser::TakeText(unsigned char byte) {
    if (byte == '\r' || byte == '\n') {
        mState = State::Ground;
        TakeControl(byte);
    } else if (byte == kBell || ++mTextLength > kLongestText) {
        mState = State::Ground;
    }
}

void TerminalParser::TakeEscape(unsigned char byte) {
    mState = State::Ground;
    if (IsIntermediate(byte)) {
        mState = State::EscapeRest;
    } else if (byte == '[') {
        mState = State::Sequence;
        mParameters.fill(0);
        mParameterCount = 0;
        mPrivate = false;
    } else if (std::string_view("]P^_X").find(static_cast<char>(byte)) != std::string_view::npos) {
        mState = State::Text;
        mTextLength = 0;
    } else {
        FinishEscape(static_cast<char>(byte));
    }
}

void TerminalParser::FinishEscape(char final) {
    if (final == 'E') mScreen.MoveToColumn(0);
    for (const Escape& escape : kEscapes)
        if (escape.final == final) (mScreen.*escape.apply)();
}

void TerminalParser::TakeSequence(unsigned char byte) {
    const bool ignored = mState == State::IgnoredRest;
    if (byte >= '@') {
        mState = State::Ground;
        if (!ignored) FinishSequence(static_cast<char>(byte));
    } else if (byte == ';' && !ignored) {
        mParameterCount =
            std::min(std::max<std::size_t>(mParameterCount, 1) + 1, mParameters.size() + 1);
    } else if (byte >= '0' && byte <= '9' && !ignored) {
        mParameterCount = std::max<std::size_t>(mParameterCount, 1);
        if (mParameterCount > mParameters.size()) return;
        int& parameter = mParameters[mParameterCount - 1];
        parameter = std::min(parameter * 10 + (byte - '0'), kLargestParameter);
    } else if (byte == '?' && mParameterCount == 0 && !ignored) {
        mPrivate = true;
    } else {
        mState = State::IgnoredRest;
    }
}

int TerminalParser::Parameter(std::size_t at, int missing) const {
    return mParameters[at] == 0 ? missing : mParameters[at];
}

void TerminalParser::FinishSequence(char final) {
    if (final == 'h' || final == 'l') {
        SetModes(final == 'h');
    } else if (!mPrivate) {
        const int count = Parameter(0, 1);
        for (const Movement& by : kMovements)
            if (by.final == final) mScreen.MoveBy(count * by.rows, count * by.columns);
        for (const Edit& edit : kEdits)
            if (edit.final == final) (mScreen.*edit.apply)(count);
        FinishOther(final, count);
    }
}

/// The sequences in neither table.
void TerminalParser::FinishOther(char final, int count) {
    const int kind = mParameters[0];
    switch (final) {
        case 'G':
        case '`':
            mScreen.MoveToColumn(count - 1);
            break;
        case 'd':
            mScreen.MoveTo(count - 1, mScreen.Cursor().column);
            break;
        case 'H':
        case 'f':
            mScreen.MoveTo(count - 1, Parameter(1, 1) - 1);
            break;
        case 's':
            mScreen.SaveCursor();
            break;
        case 'u':
            mScreen.RestoreCursor();
            break;
        case 'J':
            if (kind <= 2) mScreen.EraseDisplay(static_cast<Erase>(kind));
            break;
        case 'K':
            if (kind <= 2) mScreen.EraseLine(static_cast<Erase>(kind));
            break;
        case 'g':
            if (kind == 0) mScreen.ClearTabStop();
            if (kind == 3) mScreen.ClearAllTabStops();
            break;
        case 'r':
            mScreen.ScrollRegion(count - 1, Parameter(1, mScreen.Rows()) - 1);
            break;
        case 'm':
            SetLooks();
            break;
        default:
            break;
    }
}

void TerminalParser::SetModes(bool on) {
    ScreenModes& modes = mScreen.modes;
    for (std::size_t i = 0; i < std::min(mParameterCount, mParameters.size()); ++i) {
        const int mode = mParameters[i];
        if (!mPrivate && mode == 4) modes.insert = on;
        if (!mPrivate && mode == 20) modes.lineFeedReturns = on;
        if (mPrivate && mode == 7) modes.autoWrap = on;
        if (mPrivate && mode == 25) mScreen.ShowCursor(on);
        if (mPrivate && mode == 6) {
            modes.originMode = on;
            mScreen.MoveTo(0, 0);
        }
    }
}

void TerminalParser::SetLooks() {
    const std::size_t count = std::clamp<std::size_t>(mParameterCount, 1, mParameters.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (mParameters[i] == 38 || mParameters[i] == 48)
            i = SetExtendedColour(i);
        else
            SetLook(mParameters[i]);
    }
}

void TerminalParser::SetLook(int code) {
    struct Switch {
        int on;
        int off;
        CellFlag flag;
    };
    constexpr std::array kSwitches = {Switch{1, 22, kBold}, Switch{4, 24, kUnderlined},
                                      Switch{5, 25, kBlinking}, Switch{7, 27, kReversed},
                                      Switch{8, 28, kConcealed}};
    Cell& pen = mScreen.pen;
    if (code == 0) pen = {};
    for (const Switch& entry : kSwitches) {
        if (code == entry.on) pen.flags = static_cast<std::uint8_t>(pen.flags | entry.flag);
        if (code == entry.off) pen.flags = static_cast<std::uint8_t>(pen.flags & ~entry.flag);
    }
    if (code >= 30 && code <= 37) pen.foreground = static_cast<std::uint8_t>(code - 30);
    if (code == 39) pen.foreground = kDefaultColour;
    if (code >= 40 && code <= 47) pen.background = static_cast<std::uint8_t>(code - 40);
    if (code == 49) pen.background = kDefaultColour;
    if (code >= 90 && code <= 97) pen.foreground = static_cast<std::uint8_t>(code - 90 + 8);
    if (code >= 100 && code <= 107) pen.background = static_cast<std::uint8_t>(code - 100 + 8);
}

/// Handles 256-colour and 24-bit colour parameters: sets those that are among the 16 colours and
/// ignores others. Returns the index of the last parameter used.
std::size_t TerminalParser::SetExtendedColour(std::size_t at) {
    const auto parameter = [this](std::size_t i) {
        return i < mParameters.size() ? mParameters[i] : 0;
    };
    if (parameter(at + 1) == 2) return at + 4;
    if (parameter(at + 1) != 5) return at + 1;
    const int colour = parameter(at + 2);
    if (at + 2 >= mParameters.size() || colour >= kDefaultColour) return at + 2;
    Cell& pen = mScreen.pen;
    if (mParameters[at] == 38)
        pen.foreground = static_cast<std::uint8_t>(colour);
    else
        pen.background = static_cast<std::uint8_t>(colour);
    return at + 2;
}

}  // namespace vantor
