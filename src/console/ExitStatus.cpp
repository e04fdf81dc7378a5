#include "console/ExitStatus.hpp"

namespace vantor {

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

}  // namespace vantor
