// reliability SEED COUNT: writes the outcome of every fault in every stage and the tally of COUNT
// random sessions as Markdown. Stops at the first session that breaks a rule, names it, and exits
// with status 1.
#include <cstdlib>
#include <iostream>
#include <map>

#include "tests/faults/Matrix.hpp"

using namespace vantor;

namespace {

constexpr const char* kIntroduction =
    R"(# Reliability

Written by `scripts/reliability`. Each session runs in one process on virtual time: the whole
program without its screen, the virtual indicator, and a line that can be told to fail. After
each the following is checked, and any breach stops the run:

- The outcome, the boxes and every send are those that the bytes received so far call for.
- No reply is waited for longer than 20 s, no line sent more than four times, no verdict waited
  for longer than 60 s. The wait of an image of which nothing was accepted has no end of its
  own; closing the window ends it.
- An answer is followed by the next line at once, and a press of Abort or a close by the end.
- Both opens of the port take the stored settings; while it is in use, the system must not sleep.
- Success is reported only after "DONE" in the final stage; an indicator that compares then
  holds exactly the image.
- The port is closed, the buttons are enabled, the first panel shows, the settings are
  untouched, and an undisturbed session that follows on the same window succeeds.

)";

[[noreturn]] void Breach(const std::string& where, const std::string& violation) {
    std::cerr << where << ":\n" << violation;
    std::exit(EXIT_FAILURE);
}

void Matrix() {
    std::cout
        << "## Every fault in every stage\n\n"
           "Columns are the stages in which the fault arises. Faults of the line strike the "
           "first bytes of\nthe stage, those of the indicator what it answers next.\n\n| fault |";
    for (const char* stage : kStageNames) std::cout << ' ' << stage << " |";
    std::cout << "\n|---|";
    for (std::size_t i = 0; i < kStageNames.size(); ++i) std::cout << "---|";
    std::cout << '\n';
    for (const MatrixRow& row : MatrixRows()) {
        std::cout << "| " << row.name << " |";
        for (std::size_t stage = 0; stage < kStageNames.size(); ++stage) {
            const Judgement judgement = RunSession(CellOf(row, stage, true));
            if (!judgement.violation.empty())
                Breach(row.name + ", " + kStageNames.at(stage), judgement.violation);
            std::cout << ' ' << OutcomeName(judgement.outcome) << " |";
        }
        std::cout << '\n';
    }
}

void Walk(std::uint64_t seed, std::uint64_t count) {
    std::map<FlashOutcome, std::uint64_t> tally;
    std::uint64_t closed = 0;
    std::uint64_t notWhole = 0;
    std::uint64_t undisturbed = 0;
    for (std::uint64_t number = 0; number < count; ++number) {
        const Plan plan = RandomPlan(seed, number);
        const Judgement judgement = RunSession(plan);
        if (!judgement.violation.empty())
            Breach("seed " + std::to_string(seed) + ", session " + std::to_string(number),
                   judgement.violation);
        ++tally[judgement.outcome];
        if (judgement.gone) ++closed;
        if (plan.mishaps.empty()) ++undisturbed;
        if (judgement.outcome == FlashOutcome::Done && !judgement.memoryWhole) ++notWhole;
    }
    std::cout << "\n## Random sessions\n\nSeed " << seed << ", " << count
              << " sessions with none to five faults each, " << undisturbed
              << " of them with none.\nNo rule was broken.\n\n| outcome | sessions |\n|---|---|\n";
    for (const auto& [outcome, sessions] : tally)
        std::cout << "| " << OutcomeName(outcome) << " | " << sessions << " |\n";
    std::cout << "\nThe window was closed in " << closed << " of them.\n";
    std::cout
        << "An indicator that compares nothing said DONE without the whole image in " << notWhole
        << ":\nit had answered a line with a verdict, which is passed over, or a flipped bit "
           "had struck the\ndigit of a record that its checksum does not cover. Any other such "
           "loss would break a rule.\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: reliability SEED COUNT\n";
        return 2;
    }
    std::cout << kIntroduction;
    Matrix();
    Walk(std::strtoull(argv[1], nullptr, 10), std::strtoull(argv[2], nullptr, 10));
}
