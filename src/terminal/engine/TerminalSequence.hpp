// The escape sequences of a terminal: how one is collected, and what each does.
#pragma once

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <functional>
#include <string_view>

#include "terminal/engine/TerminalScreen.hpp"

namespace vantor {

/// An escape sequence (ESC, intermediate, final) or a control sequence (ESC [, prefix, parameters,
/// intermediate, final).
struct TerminalSequence {
    static constexpr std::size_t kMostParameters = 16;
    static constexpr int kLargestParameter = 9999;
    /// In place of two or more intermediates, with which no sequence is known.
    static constexpr char kSeveral = '\xFF';

    char introducer = 0;    ///< "[" for a control sequence
    char prefix = 0;        ///< one of "<=>?", or 0
    char intermediate = 0;  ///< from space to "/", or 0
    char final = 0;
    char32_t preceding = 0;  ///< the character shown right before the sequence, or 0

    void Collect(char intermediateByte);
    void Digit(char digit);
    /// Starts the next parameter after ";", or after ":" one that belongs to the parameter before.
    void Separate(char separator);

    /// Parameters present, at most kMostParameters; further ones are dropped.
    std::size_t Count() const { return std::min(mCount, kMostParameters); }
    /// A parameter; 0 where it is absent.
    int At(std::size_t at) const { return at < kMostParameters ? mParameters[at] : 0; }
    /// A parameter, or `missing` where it is absent or 0.
    int At(std::size_t at, int missing) const { return At(at) == 0 ? missing : At(at); }
    /// True when the parameter follows a colon.
    bool BelongsToPrevious(std::size_t at) const {
        return at < kMostParameters && mBelongs.test(at);
    }
    bool HasColon() const { return mBelongs.any(); }

private:
    std::array<int, kMostParameters> mParameters{};
    std::bitset<kMostParameters> mBelongs;
    std::size_t mCount = 0;  // includes the current one
};

/// Receives the bytes of an answer to the far end. Without a function there are no answers.
using TerminalReply = std::function<void(std::string_view)>;

/// Does what `sequence` states. An unknown one does nothing.
void Perform(const TerminalSequence& sequence, TerminalScreen& screen, const TerminalReply& reply);

/// SGR: applies the parameters of `sequence` to the attributes of `pen`.
void SetLooks(const TerminalSequence& sequence, Cell& pen);

}  // namespace vantor
