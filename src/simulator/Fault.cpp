// Parser for the command-line syntax of faults.
#include "simulator/Fault.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

#include "support/text/Text.hpp"

namespace vantor {

namespace {

// In the order of FaultKind.
constexpr std::array<std::string_view, 16> kNames{
    "nak",        "silent",        "late",       "drop",         "garble",  "noise",
    "split",      "done",          "verify",     "hangup",       "no-trav", "no-baud",
    "no-sysload", "verify-failed", "no-verdict", "split-verdict"};

constexpr std::int64_t kLongestDelayMs = 3'600'000;
constexpr std::int64_t kLargestCount = 1'000'000;

[[noreturn]] void Reject(std::string_view text, const std::string& reason) {
    throw std::invalid_argument("The fault \"" + std::string(text) + "\" " + reason + ".");
}

std::int64_t Number(std::string_view digits, std::int64_t least, std::int64_t most,
                    std::string_view text, const std::string& what) {
    const auto value = ParseInteger(digits);
    if (!value || *value < least || *value > most) {
        Reject(text,
               "needs " + what + " from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return *value;
}

// Splits `text` at the first `mark`: returns the part before it and puts the part after it into
// `rest`, which is empty when there is no `mark`.
std::string_view Before(std::string_view text, char mark, std::string_view& rest) {
    const std::size_t at = text.find(mark);
    rest = at == std::string_view::npos ? std::string_view{} : text.substr(at + 1);
    return text.substr(0, at);
}

void SetValue(Fault& fault, bool given, std::string_view value, std::string_view text) {
    if (fault.kind == FaultKind::Late) {
        fault.lateMs = Number(value, 1, kLongestDelayMs, text, "a delay (late=MS)");
        return;
    }
    if (!given) return;
    const bool maySilence = fault.kind == FaultKind::NoTrav || fault.kind == FaultKind::NoBaud ||
                            fault.kind == FaultKind::NoSysload;
    if (!maySilence) Reject(text, "takes no value after \"=\"");
    if (value != "silent") Reject(text, "knows only \"=silent\"");
    fault.silent = true;
}

}  // namespace

Fault ParseFault(std::string_view text) {
    std::string_view place;
    std::string_view value;
    const std::string_view left = Before(text, '@', place);
    const std::string_view name = Before(left, '=', value);
    const auto* const found = std::ranges::find(kNames, name);
    if (found == kNames.end()) Reject(text, "is of no known kind");

    Fault fault;
    fault.kind = static_cast<FaultKind>(found - kNames.begin());
    SetValue(fault, left.size() != name.size(), value, text);
    if (!IsLineFault(fault.kind)) {
        if (left.size() != text.size()) Reject(text, "is of a stage and takes no line after \"@\"");
        return fault;
    }
    std::string_view times;
    const std::string_view line = Before(place, 'x', times);
    fault.line =
        static_cast<std::size_t>(Number(line, 0, kLargestCount, text, "a line after \"@\""));
    if (line.size() != place.size()) {
        fault.times = static_cast<unsigned>(
            Number(times, 1, kLargestCount, text, "a number of times after \"x\""));
    }
    return fault;
}

}  // namespace vantor
