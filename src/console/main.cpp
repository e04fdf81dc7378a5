// Entry point of tsflash: creates the native platform.
#include "console/TsFlash.hpp"

int main(int argc, char** argv) {
    vantor::NativePlatform native = vantor::MakeNativePlatform(argc, argv);
    return static_cast<int>(vantor::RunTsFlash(native));
}
