// Takes screenshots of all stages of the program in the language DRIVE_LANGUAGE, as screens.steps
// says. A stage that does not appear is reported and makes the exit status 1; the other parts still
// run.
#include <exception>
#include <iostream>

#include "tests/driver/App.hpp"
#include "tests/driver/Steps.hpp"

int main() {
    using namespace vantor;
    driver::EnterDesktop();
    int status = 0;
    for (const auto& [name, lines] : ScriptsIn(STEPS)) {
        try {
            driver::RunSteps(name, lines);
        } catch (const std::exception& error) {
            std::cerr << "A part of the pictures is missing: " << error.what() << std::endl;
            status = 1;
        }
    }
    return status;
}
