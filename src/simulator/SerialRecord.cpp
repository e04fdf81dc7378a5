// Parsing and formatting of S-records.
#include "simulator/SerialRecord.hpp"

#include <array>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "support/text/Text.hpp"

namespace vantor {

namespace {

constexpr std::size_t kTypeLength = 2;  // "S2"
// Address bytes by type; 0 marks the reserved type.
constexpr std::array<std::size_t, 10> kAddressBytes{2, 2, 3, 4, 0, 2, 3, 4, 3, 2};

std::size_t AddressBytes(char type) {
    return type >= '0' && type <= '9' ? kAddressBytes[static_cast<std::size_t>(type - '0')] : 0;
}

std::optional<std::vector<std::uint8_t>> HexBytes(std::string_view digits) {
    if (digits.size() % 2 != 0) return std::nullopt;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const std::string_view pair = digits.substr(i, 2);
        std::uint8_t byte = 0;
        const auto [stop, error] =
            std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
        if (error != std::errc{} || stop != pair.data() + pair.size()) return std::nullopt;
        bytes.push_back(byte);
    }
    return bytes;
}

}  // namespace

std::optional<SerialRecord> SerialRecord::Parse(std::string_view line) {
    if (line.size() < kTypeLength || line[0] != 'S') return std::nullopt;
    const std::size_t addressBytes = AddressBytes(line[1]);
    if (addressBytes == 0) return std::nullopt;

    const auto bytes = HexBytes(line.substr(kTypeLength));
    if (!bytes || bytes->size() < 1 + addressBytes + 1) return std::nullopt;
    if (bytes->front() != bytes->size() - 1) return std::nullopt;
    // The checksum is the one's complement of the sum of the other bytes: the total is 0xFF.
    unsigned sum = 0;
    for (const std::uint8_t byte : *bytes) sum += byte;
    if ((sum & 0xFF) != 0xFF) return std::nullopt;

    SerialRecord record;
    record.type = line[1];
    for (std::size_t i = 1; i <= addressBytes; ++i) {
        record.address = (record.address << 8) | (*bytes)[i];
    }
    record.data.assign(bytes->begin() + 1 + static_cast<std::ptrdiff_t>(addressBytes),
                       bytes->end() - 1);
    return record;
}

std::string SerialRecord::Format() const {
    const std::size_t addressBytes = AddressBytes(type);
    std::string line{'S', type};
    unsigned sum = 0;
    const auto append = [&](std::size_t value) {
        const auto byte = static_cast<std::uint8_t>(value);
        sum += byte;
        line += HexDigits(byte);
    };
    append(addressBytes + data.size() + 1);
    for (std::size_t i = addressBytes; i-- > 0;) append(address >> (8 * i));
    for (const std::uint8_t byte : data) append(byte);
    append(~sum);
    return line;
}

}  // namespace vantor
