#include "console/ExitStatus.hpp"

#include <algorithm>
#include <array>

#include "console/image/Filled.hpp"
#include "platform/StringTable.hpp"
#include "resources/texts/Str.hpp"

namespace vantor {
namespace {

struct OutcomeRow {
    std::string_view code;
    Str text;
};
constexpr std::array kOutcomes = {OutcomeRow{"port-not-open", Str::OutcomePortNotOpen},
                                  OutcomeRow{"not-in-boot-monitor", Str::OutcomeNotInBootMonitor},
                                  OutcomeRow{"system-load-refused", Str::OutcomeSystemLoadRefused},
                                  OutcomeRow{"verify-failed", Str::OutcomeVerifyFailed},
                                  OutcomeRow{"declined", Str::OutcomeDeclined},
                                  OutcomeRow{"aborted", Str::OutcomeAborted},
                                  OutcomeRow{"line-refused", Str::OutcomeLineRefused},
                                  OutcomeRow{"no-line-accepted", Str::OutcomeNoLineAccepted},
                                  OutcomeRow{"no-verdict", Str::OutcomeNoVerdict},
                                  OutcomeRow{"refused", Str::OutcomeRefused},
                                  OutcomeRow{"done", Str::OutcomeWithoutRecord}};

}  // namespace

ExitStatus StatusOf(FlashOutcome outcome) {
    switch (outcome) {
        case FlashOutcome::Done:
            return ExitStatus::Done;
        case FlashOutcome::PortNotOpen:
            return ExitStatus::PortNotOpen;
        case FlashOutcome::NotInBootMonitor:
        case FlashOutcome::SystemLoadRefused:
            return ExitStatus::NotReady;
        case FlashOutcome::VerifyFailed:
            return ExitStatus::VerifyFailed;
        case FlashOutcome::Declined:
        case FlashOutcome::Aborted:
            return ExitStatus::Aborted;
        case FlashOutcome::LineRefused:
        case FlashOutcome::NothingAccepted:
        case FlashOutcome::AwaitingVerdict:
        case FlashOutcome::NoVerdict:
        case FlashOutcome::None:  // an unexpected error, reported by the error handler
            break;
    }
    return ExitStatus::UpdateFailure;
}

const char* CodeOf(FlashOutcome outcome) {
    switch (outcome) {
        case FlashOutcome::Done:
            return "done";
        case FlashOutcome::PortNotOpen:
            return "port-not-open";
        case FlashOutcome::NotInBootMonitor:
            return "not-in-boot-monitor";
        case FlashOutcome::SystemLoadRefused:
            return "system-load-refused";
        case FlashOutcome::VerifyFailed:
            return "verify-failed";
        case FlashOutcome::Declined:
            return "declined";
        case FlashOutcome::Aborted:
            return "aborted";
        case FlashOutcome::LineRefused:
            return "line-refused";
        case FlashOutcome::NothingAccepted:
            return "no-line-accepted";
        case FlashOutcome::NoVerdict:
            return "no-verdict";
        case FlashOutcome::AwaitingVerdict:
        case FlashOutcome::None:
            break;
    }
    return "error";
}

std::string OutcomeText(std::string_view code, ExitStatus status, const StringTable& strings) {
    if (status == ExitStatus::Done) return strings.Text(Str::OutcomeDone);
    const auto* const row = std::ranges::find(kOutcomes, code, &OutcomeRow::code);
    return Filled(strings.Text(Str::OutcomeWithStatus),
                  strings.Text(row == kOutcomes.end() ? Str::OutcomeError : row->text),
                  std::to_string(static_cast<int>(status)));
}

ExitStatus Worse(ExitStatus a, ExitStatus b) {
    constexpr std::array kFromWorst = {ExitStatus::VerifyFailed, ExitStatus::UpdateFailure,
                                       ExitStatus::Aborted,      ExitStatus::NotReady,
                                       ExitStatus::PortNotOpen,  ExitStatus::Usage,
                                       ExitStatus::Done};
    return *std::ranges::find_if(kFromWorst, [&](ExitStatus s) { return s == a || s == b; });
}

}  // namespace vantor
