// The order and the pace of everything that a terminal sends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "controls/BufferedPort.hpp"
#include "platform/Clock.hpp"

namespace vantor {

/// Bytes in the order in which they were added. Paced lines are sent at most one every 50 ms, each
/// only after the driver has accepted the one before; what is added later waits behind them. The
/// owner calls `Flush` until nothing is left, and `Clear` when the port has closed.
/// No operation raises.
class SendQueue {
public:
    /// Both outlive the queue. `sent` is called with bytes that the open port has taken, unless
    /// they were added as a reply.
    SendQueue(BufferedPort& port, const Clock& clock, std::function<void(std::string_view)> sent)
        : mPort(port), mClock(clock), mSent(std::move(sent)) {}

    void Add(std::string bytes) { AddPiece(std::move(bytes), Kind::Typed); }
    /// Adds what the user has not sent. Dropped while more than a megabyte waits: a far end that
    /// sends queries and does not read must not fill the memory.
    void AddReply(std::string bytes);
    /// Adds `text` as paced lines, each ended by `lineEnd`, which is not empty.
    void AddLines(std::string_view text, std::string_view lineEnd);

    /// Passes on to the port what is due. True when nothing is left, here and in the port.
    bool Flush();

    /// Paced lines wait to be sent.
    bool Pacing() const { return mLines > 0; }
    /// Drops the paced lines that wait.
    void DropLines();
    void Clear();

private:
    enum class Kind : std::uint8_t { Typed, Line, Reply };
    struct Piece {
        std::string bytes;
        Kind kind = Kind::Typed;
    };

    bool Due() const;
    void AddPiece(std::string bytes, Kind kind);
    Piece Take();

    BufferedPort& mPort;
    const Clock& mClock;
    std::function<void(std::string_view)> mSent;
    std::deque<Piece> mPieces;
    std::size_t mBytes = 0;                    // in all pieces
    std::size_t mLines = 0;                    // pieces that are paced lines
    std::optional<std::uint32_t> mLineSentAt;  // the last one, milliseconds of the clock
};

}  // namespace vantor
