// A fault to inject into the virtual indicator, and its command-line syntax. `VirtualIndicator`
// implements the effects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vantor {

enum class FaultKind : std::uint8_t {
    // Line faults.
    Nak,     ///< the line is refused with "??" and not processed
    Silent,  ///< no reply; the line is not processed
    Late,    ///< acknowledged `lateMs` later than usual
    Drop,    ///< one byte of the line is lost in transit
    Garble,  ///< one byte of the line is corrupted in transit
    Noise,   ///< stray bytes before the reply, none of them part of a reply word
    Split,   ///< the reply in single bytes, 30 ms apart
    Done,    ///< the reply is "DONE"; the line is processed
    Verify,  ///< the reply is "VERIFY FAILED"; the line is processed
    Hangup,  ///< the terminal hangs up when the line has arrived
    // Stage faults.
    NoTrav,        ///< TRAV is refused (with `silent`: no reply)
    NoBaud,        ///< BAUD likewise
    NoSysload,     ///< SYSLOAD likewise
    VerifyFailed,  ///< the verdict is always "VERIFY FAILED"
    NoVerdict,     ///< no verdict is sent
    SplitVerdict,  ///< the verdict in chunks, 100 ms apart
};

/// True for a fault of one line, false for one of a stage.
constexpr bool IsLineFault(FaultKind kind) {
    return kind <= FaultKind::Hangup;
}

struct Fault {
    FaultKind kind = FaultKind::Nak;
    /// Line faults: index of the distinct image line in a session, from 0. A line equal to the
    /// previous one is a retry of it. Lines are compared as sent by the host, before corruption
    /// in transit.
    std::size_t line = 0;
    /// Line faults: number of arrivals affected, 1 or more, counted over all sessions, so that a
    /// session after a failed one can succeed.
    unsigned times = 1;
    std::int64_t lateMs = 0;  ///< `Late`: 1 to 3,600,000
    bool silent = false;      ///< `NoTrav`, `NoBaud`, `NoSysload`: no reply instead of "??"

    friend bool operator==(const Fault&, const Fault&) = default;
};

/// Parses `KIND@LINE[xTIMES]` for a line fault ("nak@7", "late=1500@12x2"), `KIND` for a stage
/// fault ("no-verdict", "no-trav=silent"). The kinds: nak silent late=MS drop garble noise split
/// done verify hangup; no-trav no-baud no-sysload verify-failed no-verdict split-verdict.
/// Throws std::invalid_argument with a sentence that names `text`.
Fault ParseFault(std::string_view text);

}  // namespace vantor
