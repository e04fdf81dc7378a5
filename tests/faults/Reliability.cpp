// reliability SEED COUNT: writes the outcome of every fault in every stage and the tally of COUNT
// random sessions as Markdown. Stops at the first session that breaks a rule, names it, and exits
// with status 1.
#include <cstdlib>
#include <iostream>
#include <map>

#include "tests/faults/Judge.hpp"
#include "tests/faults/Matrix.hpp"

using namespace vantor;

namespace {

void StopAt(const std::string& violation, const std::string& where = {}) {
    if (violation.empty()) return;
    std::cerr << where << violation;
    std::exit(EXIT_FAILURE);
}

void Matrix() {
    std::string names = "| fault |";
    std::string rule = "|---|";
    for (const auto& stage : kStages) {
        names += std::string(" ") + stage.name + " |";
        rule += "---|";
    }
    std::cout << "## Every fault in every stage\n\n" << names << '\n' << rule << '\n';
    for (const auto& [outcomes, violation] : RunMatrix(true)) {
        StopAt(violation);
        std::cout << outcomes << '\n';
    }
}

void Walk(const std::string& seed, const std::string& count) {
    std::map<FlashOutcome, unsigned> tally;
    unsigned closed = 0;
    unsigned notWhole = 0;
    unsigned undisturbed = 0;
    for (std::uint64_t number = 0; number < std::stoull(count); ++number) {
        const Plan plan = RandomPlan(std::stoull(seed), number);
        const Judgement judgement = RunSession(plan);
        StopAt(judgement.violation, "seed " + seed + ", session " + std::to_string(number) + ":\n");
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
    std::cout << "\nThe window was closed in " << closed << " of them.\n"
              << "An indicator that compares nothing said DONE without the whole image in "
              << notWhole << ".\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: reliability SEED COUNT\n";
        return 2;
    }
    Matrix();
    Walk(argv[1], argv[2]);
}
