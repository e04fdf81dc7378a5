#include "terminal/engine/TerminalParser.hpp"

#include <array>
#include <utility>

namespace vantor {
namespace {

using State = TerminalParser::State;

constexpr std::size_t kStates = static_cast<std::size_t>(State::String) + 1;
// An unterminated string must not consume the rest of the session.
constexpr std::size_t kLongestString = 4096;

/// Bytes that mean the same in every state.
enum class Kind : std::uint8_t {
    Control,
    LineEnd,  ///< CR, LF
    Bell,
    Cancel,  ///< CAN, SUB
    Escape,
    Intermediate,
    Digit,
    Separator,
    Prefix,
    Final,
    CsiStart,     ///< [
    StringStart,  ///< P ] X ^ _
    Delete,
    High,  ///< from 128 up
};
constexpr std::size_t kKinds = static_cast<std::size_t>(Kind::High) + 1;

enum class Action : std::uint8_t {
    Ignore,
    Text,
    Execute,
    Start,
    Introduce,
    Collect,
    Prefix,
    Digit,
    Separate,
    Dispatch
};

/// What to do in a state with a byte, and the state that follows.
struct Step {
    Action action;
    State next;
};

constexpr Kind ControlKind(unsigned byte) {
    switch (byte) {
        case '\a':
            return Kind::Bell;
        case '\n':
        case '\r':
            return Kind::LineEnd;
        case 0x18:
        case 0x1A:
            return Kind::Cancel;
        case 0x1B:
            return Kind::Escape;
        default:
            return Kind::Control;
    }
}

constexpr Kind FinalKind(unsigned byte) {
    switch (byte) {
        case '[':
            return Kind::CsiStart;
        case 'P':
        case ']':
        case 'X':
        case '^':
        case '_':
            return Kind::StringStart;
        default:
            return Kind::Final;
    }
}

constexpr Kind KindOf(unsigned byte) {
    if (byte < ' ') return ControlKind(byte);
    if (byte < '0') return Kind::Intermediate;
    if (byte <= '9') return Kind::Digit;
    if (byte <= ';') return Kind::Separator;
    if (byte <= '?') return Kind::Prefix;
    if (byte < 0x7F) return FinalKind(byte);
    return byte == 0x7F ? Kind::Delete : Kind::High;
}

constexpr bool IsFinal(Kind kind) {
    return kind >= Kind::Final && kind <= Kind::StringStart;
}

constexpr Step AfterEscape(Kind kind) {
    switch (kind) {
        case Kind::Intermediate:
            return {Action::Collect, State::EscapeIntermediate};
        case Kind::CsiStart:
            return {Action::Introduce, State::CsiEntry};
        case Kind::StringStart:
            return {Action::Ignore, State::String};
        default:
            return {Action::Dispatch, State::Ground};
    }
}

constexpr Step InControlSequence(State state, Kind kind) {
    const bool ignored = state == State::CsiIgnore;
    const bool parameters = state == State::CsiEntry || state == State::CsiParameter;
    if (IsFinal(kind)) return {ignored ? Action::Ignore : Action::Dispatch, State::Ground};
    if (ignored) return {Action::Ignore, State::CsiIgnore};
    if (kind == Kind::Intermediate) return {Action::Collect, State::CsiIntermediate};
    if (kind == Kind::Digit && parameters) return {Action::Digit, State::CsiParameter};
    if (kind == Kind::Separator && parameters) return {Action::Separate, State::CsiParameter};
    if (kind == Kind::Prefix && state == State::CsiEntry)
        return {Action::Prefix, State::CsiParameter};
    return {Action::Ignore, State::CsiIgnore};
}

constexpr Step StepFor(State state, Kind kind) {
    if (kind == Kind::Cancel) return {Action::Ignore, State::Ground};
    if (kind == Kind::Escape) return {Action::Start, State::Escape};
    const bool isString = state == State::String;
    switch (kind) {
        case Kind::Bell:
        case Kind::LineEnd:
            if (isString && kind == Kind::Bell) return {Action::Ignore, State::Ground};
            return {Action::Execute, isString ? State::Ground : state};
        case Kind::Control:
            return {isString ? Action::Ignore : Action::Execute, state};
        case Kind::Delete:
            return {Action::Ignore, state};
        case Kind::High:
            // No sequence contains such a byte: this one is incomplete, and text follows.
            return {isString ? Action::Ignore : Action::Text, isString ? state : State::Ground};
        default:
            break;
    }
    if (state == State::Escape) return AfterEscape(kind);
    if (state == State::EscapeIntermediate && kind == Kind::Intermediate)
        return {Action::Collect, state};
    if (state == State::EscapeIntermediate) return {Action::Dispatch, State::Ground};
    if (state >= State::CsiEntry && state <= State::CsiIgnore)
        return InControlSequence(state, kind);
    return {isString ? Action::Ignore : Action::Text, state};
}

constexpr auto kSteps = [] {
    std::array<std::array<Step, kKinds>, kStates> steps{};
    for (std::size_t state = 0; state < kStates; ++state)
        for (std::size_t kind = 0; kind < kKinds; ++kind)
            steps[state][kind] = StepFor(static_cast<State>(state), static_cast<Kind>(kind));
    return steps;
}();

constexpr auto kKindOfByte = [] {
    std::array<Kind, 256> kinds{};
    for (std::size_t byte = 0; byte < kinds.size(); ++byte)
        kinds[byte] = KindOf(static_cast<unsigned>(byte));
    return kinds;
}();

constexpr char kShiftOut = 0x0E;
constexpr char kShiftIn = 0x0F;

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

}  // namespace

void TerminalParser::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        std::size_t taken = mState == State::Ground ? TakeText(bytes) : 0;
        if (taken == 0 && Take(bytes.front())) taken = 1;
        bytes.remove_prefix(taken);
    }
}

void TerminalParser::Reset() {
    mState = State::Ground;
    mDecoder.Reset();
}

std::size_t TerminalParser::TakeText(std::string_view bytes) {
    std::array<char32_t, 256> characters;  // NOLINT(*-member-init): written by Decode
    const auto [taken, count] = mDecoder.Decode(bytes, characters);
    Show(std::span(characters).first(count));
    return taken;
}

void TerminalParser::Show(std::span<char32_t> characters) {
    if (characters.empty()) return;
    mScreen.sets.Apply(characters);
    mScreen.Print({characters.data(), characters.size()});
    mLastShown = characters.back();
}

/// False when `byte` ends a sequence as the first byte of text, and is still to be taken.
bool TerminalParser::Take(char byte) {
    if (mDecoder.Interrupt()) {
        std::array broken = {kReplacementCharacter};
        Show(broken);
    }
    const Kind kind = kKindOfByte[static_cast<unsigned char>(byte)];
    const Step step = kSteps[static_cast<std::size_t>(mState)][static_cast<std::size_t>(kind)];
    const bool stays = mState == State::String && step.next == State::String;
    mStringLength = stays ? mStringLength + 1 : 0;
    mState = mStringLength > kLongestString ? State::Ground : step.next;
    switch (step.action) {
        case Action::Ignore:
            break;
        case Action::Text:
            return false;
        case Action::Execute:
            Execute(byte);
            break;
        case Action::Start:
            mSequence = {};
            break;
        case Action::Introduce:
            mSequence.introducer = byte;
            break;
        case Action::Collect:
            mSequence.Collect(byte);
            break;
        case Action::Prefix:
            mSequence.prefix = byte;
            break;
        case Action::Digit:
            mSequence.Digit(byte);
            break;
        case Action::Separate:
            mSequence.Separate(byte);
            break;
        case Action::Dispatch:
            Dispatch(byte);
            break;
    }
    return true;
}

void TerminalParser::Execute(char control) {
    mLastShown = 0;
    const auto number = static_cast<unsigned char>(control);
    if (control == '\a') ++mBells;
    if (control == kShiftOut) mScreen.sets.shift = 1;
    if (control == kShiftIn) mScreen.sets.shift = 0;
    if (kControls[number]) (mScreen.*kControls[number])();
}

void TerminalParser::Dispatch(char final) {
    mSequence.final = final;
    mSequence.preceding = std::exchange(mLastShown, 0);
    Perform(mSequence, mScreen, Reply);
}

}  // namespace vantor
