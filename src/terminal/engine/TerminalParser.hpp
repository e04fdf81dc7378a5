// Interprets received bytes for the screen: characters, control characters, and the escape
// sequences of VT100 and ANSI terminals.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "terminal/engine/TerminalScreen.hpp"
#include "terminal/engine/TerminalSequence.hpp"
#include "terminal/engine/TextEncoding.hpp"

namespace vantor {

/// Accepts any bytes, split anywhere. Unknown sequences are consumed completely,
/// so that no part of them shows on the screen; an unterminated string consumes no more than its
/// line or 4 KB. Bytes from 128 up are characters, never 8-bit (C1) control codes.
class TerminalParser {
public:
    /// `screen` outlives the parser.
    explicit TerminalParser(TerminalScreen& screen) : mScreen(screen) {}

    void Write(std::string_view bytes);

    /// What received bytes mean from now on. Latin-1 at first.
    void Encoding(const TextEncoding& encoding) { mDecoder.Encoding(encoding); }

    /// Sends the answer to a request for a report, during Write. Without it, which is the default,
    /// requests are not answered: the terminal sends only what was typed.
    TerminalReply Reply;

    /// Discards a partial sequence and a partial character.
    void Reset();

    /// Number of BEL characters received.
    std::uint64_t Bells() const { return mBells; }

    /// The states of a DEC terminal's parser.
    enum class State : std::uint8_t {
        Ground,
        Escape,
        EscapeIntermediate,
        CsiEntry,
        CsiParameter,
        CsiIntermediate,
        CsiIgnore,
        String,  ///< device control, operating system command and the like: ignored
    };

private:
    bool Take(char byte);
    std::size_t TakeText(std::string_view bytes);
    void Show(std::span<char32_t> characters);
    void Execute(char control);
    void Dispatch(char final);

    TerminalScreen& mScreen;
    TextDecoder mDecoder;
    State mState = State::Ground;
    TerminalSequence mSequence;
    char32_t mLastShown = 0;  // 0 after a control character or a sequence
    std::size_t mStringLength = 0;
    std::uint64_t mBells = 0;
};

}  // namespace vantor
