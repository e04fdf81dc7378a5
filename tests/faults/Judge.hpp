// Judges one session by what was noted of it: the bytes in both directions, what the user did, and
// the virtual clock. Derives from these alone what the program had to do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/StringTable.hpp"
#include "tests/faults/FaultySession.hpp"

namespace vantor {

inline constexpr unsigned kDataLines = 24;

/// One send of the program and the bytes read before the next one.
struct Exchange {
    std::string sent;  ///< empty: the final stage began, which sends nothing
    std::int32_t at = 0;
    std::string reply = {};
    std::int32_t answeredAt = 0;

    bool OfImage() const { return sent.starts_with('S') && sent != "SYSLOAD\r"; }
    bool Final() const { return sent.empty(); }
    bool Holds(const char* word) const { return reply.find(word) != std::string::npos; }
    bool HasVerdict() const { return Holds("VERIFY FAILED") || Holds("DONE"); }
    bool Accepted() const { return !HasVerdict() && Holds("OK"); }
    bool Answered() const { return HasVerdict() || (!Final() && (Accepted() || Holds("??"))); }
    bool ChangesSpeed() const { return sent == "BAUD 115200\r" && Accepted(); }
    /// How long the program has to wait before it goes on.
    std::int32_t Wait() const;
};

struct Record {
    /// Number of different image lines sent; they do not repeat within the image.
    std::size_t LinesSent() const;
    bool InFinalStage() const;
    /// All lines have been answered, none of them with OK: only the user ends this wait. It begins
    /// after the message pump that follows the last line.
    bool WaitsForUser(std::int32_t now) const;

    std::vector<LineSettings> opened;
    std::vector<Exchange> exchanges;
    bool hungUp = false;
    std::vector<std::string> complaints;  ///< of the indicator about the program
    std::vector<std::string> told;        ///< message boxes without questions
    int beeps = 0;
    std::int32_t begunAt = 0;
    std::int32_t endedAt = 0;  ///< without the time in which boxes were open
    struct End {
        std::int32_t at;
        std::size_t sends;  ///< number of exchanges until then
    };
    std::optional<End> wanted;  ///< the user aborted or closed in time
};

/// Adds to `judgement`, which holds how the session of `plan` ended, the rules that it broke.
void Judge(const Plan& plan, const Record& record, const StringTable& strings,
           Judgement& judgement);

std::string OutcomeName(FlashOutcome outcome);

}  // namespace vantor
