// libFuzzer entry points of the target TARGET. The last argument is the corpus folder, which
// receives the seeds.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>

#include "tests/Words.hpp"
#include "tests/fuzz/Fuzz.hpp"

extern "C" int LLVMFuzzerInitialize(const int* count, char*** arguments) {
    const std::filesystem::path folder = (*arguments)[*count - 1];
    if (!std::filesystem::is_directory(folder)) return 0;
    std::ifstream seeds(FOLDER "/" TARGET ".seeds");
    int number = 0;
    for (std::string line; std::getline(seeds, line);)
        std::ofstream(folder / ("seed" + std::to_string(++number)), std::ios::binary)
            << vantor::WordsOf(line).at(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vantor::Fuzz(TARGET, {reinterpret_cast<const char*>(data), size});
    return 0;
}
