#include "terminal/engine/TerminalSequence.hpp"

#include <algorithm>
#include <cstdint>
#include <string>

namespace vantor {
namespace {

/// A sequence to perform.
struct Call {
    const TerminalSequence& sequence;
    TerminalScreen& screen;
    const TerminalReply& reply;

    int Count() const { return sequence.At(0, 1); }
    void Answer(const std::string& bytes) const {
        if (reply) reply(bytes);
    }
};
using Handler = void (*)(const Call&);

struct Entry {
    std::uint32_t key;
    Handler perform;
};

constexpr std::uint32_t Key(char introducer, char prefix, char intermediate, char final) {
    std::uint32_t key = 0;
    for (const char part : {introducer, prefix, intermediate, final})
        key = key << 8u | static_cast<unsigned char>(part);
    return key;
}

constexpr bool IsPrefix(char c) {
    return c >= '<' && c <= '?';
}

constexpr bool IsIntermediate(char c) {
    return c >= ' ' && c <= '/';
}

/// `text` is the sequence without ESC and parameters. Not consteval: clang 14 compiles a lambda in
/// the arguments of such a call wrongly.
constexpr Entry On(std::string_view text, Handler perform) {
    const char final = text.back();
    text.remove_suffix(1);
    const auto take = [&text](bool present) {
        const char taken = present ? text.front() : '\0';
        text.remove_prefix(present ? 1 : 0);
        return taken;
    };
    const char introducer = take(text.starts_with('['));
    const char prefix = take(!text.empty() && IsPrefix(text.front()));
    const char intermediate = take(!text.empty() && IsIntermediate(text.front()));
    return {Key(introducer, prefix, intermediate, final), perform};
}

// --- what is too long for the table ------------------------------------------------------------

void MoveDownBy(const Call& call, int rows) {
    call.screen.MoveBy(rows, 0);
    call.screen.MoveToColumn(0);
}

void EraseInDisplay(const Call& call) {
    const int extent = call.sequence.At(0);
    if (extent <= 2) call.screen.EraseDisplay(static_cast<Erase>(extent));
    if (extent == 3) call.screen.ClearHistory();
}

void EraseInLine(const Call& call) {
    const int extent = call.sequence.At(0);
    if (extent <= 2) call.screen.EraseLine(static_cast<Erase>(extent));
}

void ClearTabs(const Call& call) {
    if (call.sequence.At(0) == 0) call.screen.ClearTabStop();
    if (call.sequence.At(0) == 3) call.screen.ClearAllTabStops();
}

void Repeat(const Call& call) {
    // A row at most: a short sequence must not cost the time of many characters.
    const int count = std::min(call.Count(), call.screen.Columns());
    if (call.sequence.preceding != 0)
        call.screen.Print(std::u32string(static_cast<std::size_t>(count), call.sequence.preceding));
}

void Designate(const Call& call) {
    const auto number = static_cast<std::size_t>(call.sequence.intermediate - '(');
    const char final = call.sequence.final;
    call.screen.sets.designated.at(number) = final == 'A' ? CharacterSet::Uk
                                             : final == '0' || final == '2'
                                                 ? CharacterSet::LineDrawing
                                                 : CharacterSet::Ascii;
}

void Shift(const Call& call, std::uint8_t set) {
    call.screen.sets.shift = set;
}

/// The device attributes of a VT102.
void Identify(const Call& call) {
    if (call.sequence.At(0) == 0) call.Answer("\x1B[?6c");
}

void ReportStatus(const Call& call) {
    const auto [row, column] = call.screen.CountedCursor();
    if (call.sequence.At(0) == 5) call.Answer("\x1B[0n");
    if (call.sequence.At(0) == 6)
        call.Answer("\x1B[" + std::to_string(row + 1) + ";" + std::to_string(column + 1) + "R");
}

/// DECREQTPARM: no parity, 8 bits, 9600 bit/s, whatever the line has.
void ReportParameters(const Call& call) {
    const int kind = call.sequence.At(0);
    if (kind <= 1) call.Answer("\x1B[" + std::to_string(kind + 2) + ";1;1;112;112;1;0x");
}

void SetOriginMode(TerminalScreen& screen, bool on) {
    screen.modes.originMode = on;
    screen.MoveTo(0, 0);
}

/// Modes 47, 1047, 1048 and 1049: the alternate screen, and the saved cursor.
void SetAlternate(TerminalScreen& screen, int mode, bool on) {
    const bool withCursor = mode >= 1048;
    if (on && withCursor) screen.SaveCursor();
    if (mode != 1048) screen.ShowAlternate(on);
    if (!on && withCursor) screen.RestoreCursor();
}

void SetPrivateMode(TerminalScreen& screen, int mode, bool on) {
    switch (mode) {
        case 1:
            screen.modes.applicationCursorKeys = on;
            break;
        case 3:
            screen.ClearForColumns();
            break;
        case 5:
            screen.ReverseScreen(on);
            break;
        case 6:
            SetOriginMode(screen, on);
            break;
        case 7:
            screen.modes.autoWrap = on;
            break;
        case 25:
            screen.ShowCursor(on);
            break;
        case 66:
            screen.modes.applicationKeypad = on;
            break;
        case 47:
        case 1047:
        case 1048:
        case 1049:
            SetAlternate(screen, mode, on);
            break;
        default:
            break;
    }
}

template <bool on>
void SetPrivateModes(const Call& call) {
    for (std::size_t i = 0; i < call.sequence.Count(); ++i)
        SetPrivateMode(call.screen, call.sequence.At(i), on);
}

template <bool on>
void SetModes(const Call& call) {
    for (std::size_t i = 0; i < call.sequence.Count(); ++i) {
        if (call.sequence.At(i) == 4) call.screen.modes.insert = on;
        if (call.sequence.At(i) == 20) call.screen.modes.lineFeedReturns = on;
    }
}

// --- the table -----------------------------------------------------------------------------------

constexpr auto kEntries = [] {
    std::array entries = {
        On("7", [](const Call& c) { c.screen.SaveCursor(); }),
        On("8", [](const Call& c) { c.screen.RestoreCursor(); }),
        On("=", [](const Call& c) { c.screen.modes.applicationKeypad = true; }),
        On(">", [](const Call& c) { c.screen.modes.applicationKeypad = false; }),
        On("D", [](const Call& c) { c.screen.Index(); }),
        On("E", [](const Call& c) { c.screen.NextLine(); }),
        On("H", [](const Call& c) { c.screen.SetTabStop(); }),
        On("M", [](const Call& c) { c.screen.ReverseLineFeed(); }),
        On("N", [](const Call& c) { c.screen.sets.oneShift = 2; }),
        On("O", [](const Call& c) { c.screen.sets.oneShift = 3; }),
        On("Z", Identify),
        On("c", [](const Call& c) { c.screen.Reset(); }),
        On("n", [](const Call& c) { Shift(c, 2); }),
        On("o", [](const Call& c) { Shift(c, 3); }),
        On("#8", [](const Call& c) { c.screen.Align(); }),
        On("(0", Designate),
        On("(1", Designate),
        On("(2", Designate),
        On("(A", Designate),
        On("(B", Designate),
        On(")0", Designate),
        On(")1", Designate),
        On(")2", Designate),
        On(")A", Designate),
        On(")B", Designate),
        On("*0", Designate),
        On("*1", Designate),
        On("*2", Designate),
        On("*A", Designate),
        On("*B", Designate),
        On("+0", Designate),
        On("+1", Designate),
        On("+2", Designate),
        On("+A", Designate),
        On("+B", Designate),
        On("[@", [](const Call& c) { c.screen.InsertCharacters(c.Count()); }),
        On("[A", [](const Call& c) { c.screen.MoveBy(-c.Count(), 0); }),
        On("[B", [](const Call& c) { c.screen.MoveBy(c.Count(), 0); }),
        On("[C", [](const Call& c) { c.screen.MoveBy(0, c.Count()); }),
        On("[D", [](const Call& c) { c.screen.MoveBy(0, -c.Count()); }),
        On("[E", [](const Call& c) { MoveDownBy(c, c.Count()); }),
        On("[F", [](const Call& c) { MoveDownBy(c, -c.Count()); }),
        On("[G", [](const Call& c) { c.screen.MoveToColumn(c.Count() - 1); }),
        On("[H", [](const Call& c) { c.screen.MoveTo(c.Count() - 1, c.sequence.At(1, 1) - 1); }),
        On("[I", [](const Call& c) { c.screen.TabBy(c.Count()); }),
        On("[J", EraseInDisplay),
        On("[K", EraseInLine),
        On("[L", [](const Call& c) { c.screen.InsertLines(c.Count()); }),
        On("[M", [](const Call& c) { c.screen.DeleteLines(c.Count()); }),
        On("[P", [](const Call& c) { c.screen.DeleteCharacters(c.Count()); }),
        On("[S", [](const Call& c) { c.screen.ScrollUp(c.Count()); }),
        On("[T", [](const Call& c) { c.screen.ScrollDown(c.Count()); }),
        On("[X", [](const Call& c) { c.screen.EraseCharacters(c.Count()); }),
        On("[Z", [](const Call& c) { c.screen.TabBy(-c.Count()); }),
        On("[`", [](const Call& c) { c.screen.MoveToColumn(c.Count() - 1); }),
        On("[a", [](const Call& c) { c.screen.MoveBy(0, c.Count()); }),
        On("[b", Repeat),
        On("[c", Identify),
        On("[d", [](const Call& c) { c.screen.MoveTo(c.Count() - 1, c.screen.Cursor().column); }),
        On("[e", [](const Call& c) { c.screen.MoveBy(c.Count(), 0); }),
        On("[f", [](const Call& c) { c.screen.MoveTo(c.Count() - 1, c.sequence.At(1, 1) - 1); }),
        On("[g", ClearTabs),
        On("[h", SetModes<true>),
        On("[l", SetModes<false>),
        On("[m", [](const Call& c) { SetLooks(c.sequence, c.screen.pen); }),
        On("[n", ReportStatus),
        On("[r",
           [](const Call& c) {
               c.screen.ScrollRegion(c.Count() - 1, c.sequence.At(1, c.screen.Rows()) - 1);
           }),
        On("[s", [](const Call& c) { c.screen.SaveCursor(); }),
        On("[u", [](const Call& c) { c.screen.RestoreCursor(); }),
        On("[x", ReportParameters),
        On("[?h", SetPrivateModes<true>),
        On("[?l", SetPrivateModes<false>),
        On("[!p", [](const Call& c) { c.screen.SoftReset(); }),
    };
    std::ranges::sort(entries, {}, &Entry::key);
    return entries;
}();

}  // namespace

void TerminalSequence::Collect(char intermediateByte) {
    intermediate = intermediate == 0 ? intermediateByte : kSeveral;
}

void TerminalSequence::Digit(char digit) {
    mCount = std::max<std::size_t>(mCount, 1);
    if (mCount > kMostParameters) return;
    int& parameter = mParameters[mCount - 1];
    parameter = std::min(parameter * 10 + (digit - '0'), kLargestParameter);
}

void TerminalSequence::Separate(char separator) {
    mCount = std::min(std::max<std::size_t>(mCount, 1) + 1, kMostParameters + 1);
    if (separator == ':' && mCount <= kMostParameters) mBelongs.set(mCount - 1);
}

void Perform(const TerminalSequence& sequence, TerminalScreen& screen, const TerminalReply& reply) {
    if (sequence.HasColon() && sequence.final != 'm') return;
    const std::uint32_t key =
        Key(sequence.introducer, sequence.prefix, sequence.intermediate, sequence.final);
    const auto* const found = std::ranges::lower_bound(kEntries, key, {}, &Entry::key);
    if (found != kEntries.end() && found->key == key) found->perform({sequence, screen, reply});
}

}  // namespace vantor
