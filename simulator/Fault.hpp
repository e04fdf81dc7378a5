// A fault that the virtual indicator is asked to show, and its spelling on a command line. What
// each fault does to the dialogue is the virtual indicator's business.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vantor {

enum class FaultKind : std::uint8_t {
    // At one image line.
    Nak,     ///< refused with "??", not taken
    Silent,  ///< neither answered nor taken
    Late,    ///< acknowledged `lateMs` later than usual
    Drop,    ///< one byte of the line is lost on the way in
    Garble,  ///< one byte of the line is damaged on the way in
    Noise,   ///< stray bytes before the answer, none of them part of a known word
    Split,   ///< the answer in single bytes, 30 ms apart
    Done,    ///< answered "DONE", but taken
    Verify,  ///< answered "VERIFY FAILED", but taken
    Hangup,  ///< the terminal closes when the line has arrived
    // Of a whole phase.
    NoTrav,        ///< TRAV is refused (or, `silent`, not answered)
    NoBaud,        ///< BAUD likewise
    NoSysload,     ///< SYSLOAD likewise
    VerifyFailed,  ///< the verdict is "VERIFY FAILED" whatever arrived
    NoVerdict,     ///< no verdict comes
    SplitVerdict,  ///< the verdict in pieces, 100 ms apart
};

struct Fault {
    FaultKind kind = FaultKind::Nak;
    /// Line faults: which distinct image line of a session, from 0. A line equal to the one
    /// received before it is a repeat of it, as the host sent both: damage on the way in does
    /// not make them differ.
    std::size_t line = 0;
    /// Line faults: on how many arrivals of the line, 1 or more, counted over all sessions, so
    /// that a session after a failed one can succeed.
    unsigned times = 1;
    std::int64_t lateMs = 0;  ///< `Late`: 1 to 3,600,000
    bool silent = false;      ///< `NoTrav`, `NoBaud`, `NoSysload`: no answer instead of "??"

    friend bool operator==(const Fault&, const Fault&) = default;
};

/// Reads `KIND@LINE[xTIMES]` for a line fault ("nak@7", "late=1500@12x2"), `KIND` for one of a
/// phase ("no-verdict", "no-trav=silent"). The kinds: nak silent late=MS drop garble noise split
/// done verify hangup; no-trav no-baud no-sysload verify-failed no-verdict split-verdict.
/// Throws std::invalid_argument with a sentence that names `text`.
Fault ParseFault(std::string_view text);

}  // namespace vantor
