// Compares two images by their flash memory contents, regardless of how records are split.
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "simulator/FlashMemory.hpp"

namespace {

vantor::FlashMemory MemoryOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return vantor::FlashMemory::FromRecords(text);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "Usage: same_memory IMAGE IMAGE\n";
        return 2;
    }
    try {
        if (MemoryOf(argv[1]) == MemoryOf(argv[2])) return 0;
        std::cerr << "same_memory: the images differ\n";
        return 1;
    } catch (const std::exception& error) {
        std::cerr << "same_memory: " << error.what() << "\n";
        return 2;
    }
}
