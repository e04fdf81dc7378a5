// Compares two images by the flash memory contents of their S-records, regardless of how records
// are split. Shares no code with the virtual indicator, whose memory it judges.
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Memory = std::map<unsigned long, unsigned long>;  // bytes by address

void Store(Memory& memory, const std::string& record) {
    std::vector<unsigned long> bytes;  // count, address, data, checksum
    for (std::size_t at = 2; at < record.size(); at += 2)
        bytes.push_back(std::stoul(record.substr(at, 2), nullptr, 16));
    const unsigned long sum = std::accumulate(bytes.begin(), bytes.end(), 0UL);
    if (record[0] != 'S' || bytes.size() < 4 || bytes.size() != bytes[0] + 1 || sum % 256 != 255)
        throw std::runtime_error("no record: " + record);
    if (record[1] < '1' || record[1] > '3') return;  // no data
    std::size_t next = 1;
    unsigned long address = 0;
    for (const std::size_t end = static_cast<std::size_t>(record[1] - '0') + 2; next < end; ++next)
        address = address << 8 | bytes.at(next);
    for (; next < bytes.size() - 1; ++next) memory[address++] = bytes[next];
}

Memory MemoryOf(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    Memory memory;
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (!line.empty()) Store(memory, line);
    }
    return memory;
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
