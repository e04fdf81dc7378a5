// What received bytes mean for the screen: characters, control characters, and the sequences of
// VT100 and ANSI terminals.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "controls/TerminalScreen.hpp"

namespace vantor {

/// Takes any bytes in any portions. What is not understood is swallowed to its end, so that stray
/// codes never litter the screen; a sequence that never ends swallows no more than its line.
/// Bytes from 128 up are characters: the 8-bit controls of some terminals lie where the code page
/// has letters. Requests of the line are not answered: nothing is sent that nobody typed.
class TerminalParser {
public:
    /// `screen` outlives the parser.
    explicit TerminalParser(TerminalScreen& screen) : mScreen(screen) {}

    void Write(std::string_view bytes);

    /// Forgets a sequence that has begun.
    void Reset() { mState = State::Ground; }

    /// How many times BEL has come.
    std::uint64_t Bells() const { return mBells; }

private:
    enum class State : std::uint8_t {
        Ground,
        Escape,       ///< after ESC
        EscapeRest,   ///< after ESC and an intermediate character: the end is swallowed
        Sequence,     ///< after ESC [
        IgnoredRest,  ///< of a sequence that is not understood
        Text,         ///< a text for the terminal itself, such as a window title
    };

    void Take(unsigned char byte);
    void TakeControl(unsigned char byte);
    void TakeEscape(unsigned char byte);
    void TakeSequence(unsigned char byte);
    void TakeText(unsigned char byte);
    void FinishEscape(char final);
    void FinishSequence(char final);
    bool MoveCursor(char final);
    void Edit(char final);
    void SetModes(bool on);
    void SetLooks();
    void SetLook(int code);
    std::size_t SetExtendedColour(std::size_t at);

    /// A parameter, or `missing` where there is none or 0.
    int Parameter(std::size_t at, int missing) const;

    TerminalScreen& mScreen;
    State mState = State::Ground;
    std::array<int, 16> mParameters{};
    std::size_t mParameterCount = 0;  // those begun; further ones are dropped
    bool mPrivate = false;            // the sequence began with "?"
    std::size_t mTextLength = 0;
    std::uint64_t mBells = 0;
};

}  // namespace vantor
