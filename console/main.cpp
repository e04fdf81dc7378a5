// tsflash's entry point: takes the platform that the program is built for.
#include "console/TsFlash.hpp"

int main(int argc, char** argv) {
    vantor::NativePlatform native = vantor::MakeNativePlatform(argc, argv);
    return static_cast<int>(vantor::RunTsFlash(native));
}
