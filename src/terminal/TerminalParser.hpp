// Interprets received bytes for the screen: characters, control characters, and the escape
// sequences of VT100 and ANSI terminals.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "terminal/TerminalScreen.hpp"
#include "terminal/TextEncoding.hpp"

namespace vantor {

/// Accepts any bytes, split anywhere. Unknown sequences are consumed completely,
/// so that no part of them shows on the screen; an unterminated one consumes no more than its line.
/// Bytes from 128 up are characters: the code page has letters at the 8-bit (C1) control codes.
/// Requests for reports are not answered: the terminal sends only what was typed.
class TerminalParser {
public:
    /// `screen` outlives the parser.
    explicit TerminalParser(TerminalScreen& screen) : mScreen(screen) {}

    void Write(std::string_view bytes);

    /// What received bytes mean from now on. Code page 1252 at first.
    void Encoding(const TextEncoding& encoding) { mDecoder.Encoding(encoding); }

    /// Discards a partial sequence.
    void Reset() {
        mState = State::Ground;
        mDecoder.Reset();
    }

    /// Number of BEL characters received.
    std::uint64_t Bells() const { return mBells; }

private:
    enum class State : std::uint8_t {
        Ground,
        Escape,       ///< after ESC
        EscapeRest,   ///< after ESC and an intermediate byte; the rest is ignored
        Sequence,     ///< after ESC [
        IgnoredRest,  ///< of an unknown sequence
        Text,         ///< a string for the terminal itself, such as a window title
    };

    std::size_t TakeCharacters(std::string_view bytes);
    void Take(unsigned char byte);
    void TakeControl(unsigned char byte);
    void TakeEscape(unsigned char byte);
    void TakeSequence(unsigned char byte);
    void TakeText(unsigned char byte);
    void FinishEscape(char final);
    void FinishSequence(char final);
    void FinishOther(char final, int count);
    void SetModes(bool on);
    void SetLooks();
    void SetLook(int code);
    std::size_t SetExtendedColour(std::size_t at);

    /// A parameter, or `missing` where it is absent or 0.
    int Parameter(std::size_t at, int missing) const;

    TerminalScreen& mScreen;
    TextDecoder mDecoder;
    State mState = State::Ground;
    std::array<int, 16> mParameters{};
    std::size_t mParameterCount = 0;  // includes the current one; excess ones are dropped
    bool mPrivate = false;            // the sequence starts with "?"
    std::size_t mTextLength = 0;
    std::uint64_t mBells = 0;
};

}  // namespace vantor
