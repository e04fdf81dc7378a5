// reliability SEED COUNT: writes the outcome of every fault in every stage and the tally of COUNT
// random sessions as Markdown. Stops at the first session that breaks a rule, names it, and exits
// with status 1.
#include <cstdlib>
#include <iostream>
#include <map>

#include "tests/faults/Matrix.hpp"

using namespace vantor;

namespace {

[[noreturn]] void Breach(const std::string& violation) {
    std::cerr << violation;
    std::exit(EXIT_FAILURE);
}

void Matrix() {
    std::cout << "## Every fault in every stage\n\n| fault |";
    for (const char* stage : kStageNames) std::cout << ' ' << stage << " |";
    std::cout << "\n|---|";
    for (std::size_t i = 0; i < kStageNames.size(); ++i) std::cout << "---|";
    std::cout << '\n';
    for (const MatrixRow& row : MatrixRows()) {
        const auto [outcomes, violation] = RunRow(row, true);
        if (!violation.empty()) Breach(violation);
        std::cout << outcomes << '\n';
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
            Breach("seed " + std::to_string(seed) + ", session " + std::to_string(number) + ":\n" +
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
    std::cout << "An indicator that compares nothing said DONE without the whole image in "
              << notWhole << ".\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: reliability SEED COUNT\n";
        return 2;
    }
    Matrix();
    Walk(std::strtoull(argv[1], nullptr, 10), std::strtoull(argv[2], nullptr, 10));
}
