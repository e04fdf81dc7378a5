// Writes a firmware image of realistic size with deterministic, made-up contents. For tests and
// demonstrations; no indicator would start it.
#include <cstdint>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/SerialRecord.hpp"

namespace vantor {
namespace {

constexpr std::uint32_t kBytesPerRecord = 16;  // an S2 record of 44 characters
constexpr std::string_view kTitle = "VANTOR M40 SAMPLE";

struct Range {
    std::uint32_t begin;
    std::uint32_t end;
};

// Vectors, program and tables with gaps between them, as a linker leaves: 3,399 data records, one
// of them across the bank boundary at 0x10000.
constexpr Range kRanges[] = {
    {0x00'1000, 0x00'1400},
    {0x00'4008, 0x00'8008},
    {0x00'F008, 0x01'8078},
};

// Hash of the address: no two records are equal, and a misplaced byte is detectable.
std::uint8_t ByteAt(std::uint32_t address) {
    std::uint32_t x = address * 0x9E37'79B1U;
    x ^= x >> 15;
    x *= 0x85EB'CA77U;
    x ^= x >> 13;
    return static_cast<std::uint8_t>(x);
}

std::string SampleImage() {
    std::string text = SerialRecord{'0', 0, {kTitle.begin(), kTitle.end()}}.Format() + "\r\n";
    std::uint32_t records = 0;
    for (const Range& range : kRanges) {
        for (std::uint32_t at = range.begin; at < range.end; at += kBytesPerRecord) {
            SerialRecord record{'2', at, {}};
            for (std::uint32_t i = 0; i < kBytesPerRecord; ++i) {
                record.data.push_back(ByteAt(at + i));
            }
            text += record.Format() + "\r\n";
            ++records;
        }
    }
    text += SerialRecord{'5', records, {}}.Format() + "\r\n";
    return text + SerialRecord{'8', kRanges[0].begin, {}}.Format() + "\r\n";
}

}  // namespace
}  // namespace vantor

int main() {
    return std::cout << vantor::SampleImage() << std::flush ? 0 : 1;
}
