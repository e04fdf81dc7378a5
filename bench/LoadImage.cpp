// Measures loading an image against a std::getline loop that fills a vector of strings.
#include <malloc.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/Measure.hpp"
#include "flash/FirmwareImage.hpp"
#include "platform/posix/PosixServices.hpp"

namespace vantor::bench {
namespace {

void WriteImage(const std::string& path, std::size_t lines) {
    std::ofstream file(path, std::ios::binary);
    for (std::size_t i = 0; i < lines; ++i)
        file << "S2140010001234567890ABCDEF1234567890ABCDEF12\r\n";
}

double LoadOurs(const std::string& path, std::size_t lines) {
    const auto files = MakePosixFiles();
    const auto start = SteadyClock::now();
    const ImageLines image = FileToStringArray(path, *files);
    const double seconds = SecondsSince(start);
    return image.UBound() + 1 == lines ? seconds : -1;
}

double LoadTheirs(const std::string& path, std::size_t lines) {
    const auto start = SteadyClock::now();
    std::vector<std::string> stored;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) stored.push_back(line);
    const double seconds = SecondsSince(start);
    return stored.size() == lines ? seconds : -1;
}

}  // namespace
}  // namespace vantor::bench

int main() {
    using namespace vantor::bench;
    // Keep freed memory in the process: page faults on fresh memory cost more than the measured
    // work, and it would be random which side takes them.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    const std::string path = std::filesystem::temp_directory_path() / "load_image_bench.run";
    for (const std::size_t lines : {std::size_t{100'000}, std::size_t{1'000'000}}) {
        WriteImage(path, lines);
        const Pair seconds = SideBySide(
            9, [&] { return LoadOurs(path, lines); }, [&] { return LoadTheirs(path, lines); });
        std::printf("load %8zu lines: %7.2f ms, std::getline %7.2f ms, ratio %.2f\n", lines,
                    seconds.ours * 1e3, seconds.theirs * 1e3, seconds.ours / seconds.theirs);
    }
    std::filesystem::remove(path);
}
