// reliability SEED COUNT: writes the outcome of every fault in every phase and the tally of COUNT
// random sessions as Markdown. Stops at the first session that breaks a rule, names it, and exits
// with status 1.
#include <cstdlib>
#include <iostream>
#include <map>

#include "tests/faults/Matrix.hpp"
#include "tests/faults/Walk.hpp"

using namespace vantor;

namespace {

constexpr const char* kIntroduction =
    "# Reliability\n\n"
    "Written by `scripts/reliability`. Each session runs in one process on virtual time: the "
    "whole\n"
    "program without its screen, the virtual indicator, and a line that can be told to fail. "
    "After\n"
    "each the following is checked, and any breach stops the run:\n\n"
    "- The outcome, the boxes and every send are those that the bytes received so far call for.\n"
    "- No reply is waited for longer than 20 s, no line sent more than four times, no verdict "
    "waited\n"
    "  for longer than 60 s. The wait of an image of which nothing was accepted has no end of its\n"
    "  own; closing the window ends it.\n"
    "- Success is reported only after \"DONE\" in the final phase; an indicator that compares "
    "then\n"
    "  holds exactly the image.\n"
    "- The port is closed, the buttons are enabled, the first panel shows, the settings are\n"
    "  untouched, and an undisturbed session that follows on the same window succeeds.\n\n";

[[noreturn]] void Breach(const std::string& where, const std::string& violation) {
    std::cerr << where << ":\n" << violation;
    std::exit(EXIT_FAILURE);
}

void Matrix() {
    std::cout
        << "## Every fault in every phase\n\n"
           "Columns are the phases in which the fault arises. Faults of the line strike the "
           "first bytes of\nthe phase, those of the indicator what it answers next.\n\n| fault |";
    for (const char* phase : kPhaseNames) std::cout << ' ' << phase << " |";
    std::cout << "\n|---|";
    for (std::size_t i = 0; i < kPhaseNames.size(); ++i) std::cout << "---|";
    std::cout << '\n';
    for (const MatrixRow& row : MatrixRows()) {
        std::cout << "| " << row.name << " |";
        for (std::size_t phase = 0; phase < kPhaseNames.size(); ++phase) {
            const Verdict verdict = RunSession(CellOf(row, phase, true));
            if (!verdict.violation.empty())
                Breach(row.name + ", " + kPhaseNames.at(phase), verdict.violation);
            std::cout << ' ' << OutcomeName(verdict.outcome) << " |";
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
        const Verdict verdict = RunSession(plan);
        if (!verdict.violation.empty())
            Breach("seed " + std::to_string(seed) + ", session " + std::to_string(number),
                   verdict.violation);
        ++tally[verdict.outcome];
        if (verdict.gone) ++closed;
        if (plan.mishaps.empty()) ++undisturbed;
        if (verdict.outcome == FlashOutcome::Done && !verdict.memoryWhole) ++notWhole;
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
