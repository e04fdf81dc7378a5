// Conversion of flash memory to and from S-record text.
#include "simulator/FlashMemory.hpp"

#include <stdexcept>

#include "simulator/SerialRecord.hpp"

namespace vantor {

namespace {

constexpr std::size_t kBytesPerRecord = 16;
constexpr std::uint32_t kLast24BitAddress = 0xFF'FFFF;

}  // namespace

FlashMemory FlashMemory::FromRecords(std::string_view text) {
    FlashMemory memory;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        line = line.substr(0, line.find_last_not_of(" \r") + 1);
        if (line.empty()) continue;

        const auto record = SerialRecord::Parse(line);
        if (!record) {
            throw std::invalid_argument("Line " + std::to_string(number) +
                                        " of the image is not a valid record: \"" +
                                        std::string(line) + "\".");
        }
        if (record->IsData()) memory.Write(record->address, record->data);
    }
    return memory;
}

std::string FlashMemory::ToRecords() const {
    const bool wide = !mBytes.empty() && mBytes.rbegin()->first > kLast24BitAddress;
    std::string text;
    SerialRecord record;
    record.type = wide ? '3' : '2';
    const auto flush = [&] {
        if (!record.data.empty()) text += record.Format() + "\r\n";
        record.data.clear();
    };
    std::uint32_t next = 0;
    for (const auto& [address, byte] : mBytes) {
        if (address != next || record.data.size() == kBytesPerRecord) flush();
        if (record.data.empty()) record.address = address;
        record.data.push_back(byte);
        next = address + 1;
    }
    flush();
    return text + SerialRecord{wide ? '7' : '8', 0, {}}.Format() + "\r\n";
}

void FlashMemory::Write(std::uint32_t address, std::span<const std::uint8_t> data) {
    for (const std::uint8_t byte : data) mBytes[address++] = byte;
}

}  // namespace vantor
