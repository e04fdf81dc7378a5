// Takes screenshots of all stages of the program in the language DRIVE_LANGUAGE, as screens.steps
// says. A stage that does not appear is reported and makes the exit status 1; the other parts still
// run.
#include <exception>
#include <iostream>

#include "tests/driver/App.hpp"
#include "tests/driver/Steps.hpp"

namespace {

/// Returns whether `part` succeeded; its error is printed.
bool Done(const auto& part) {
    try {
        part();
        return true;
    } catch (const std::exception& error) {
        std::cerr << "A part of the pictures is missing: " << error.what() << std::endl;
        return false;
    }
}

}  // namespace

int main() {
    using namespace vantor;
    if (!Done([] { driver::EnterDesktop(); })) return 1;
    int status = 0;
    for (const auto& script : ScriptsIn(STEPS))
        if (!Done([&] { driver::RunSteps(script.first, script.second); })) status = 1;
    return status;
}
