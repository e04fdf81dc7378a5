// Parsing and formatting of S-records.
#include "simulator/SerialRecord.hpp"

#include <array>
#include <cstddef>

namespace vantor {

namespace {

constexpr std::size_t kTypeLength = 2;  // "S2"
// Address bytes by type; 0 marks the reserved type.
constexpr std::array<std::size_t, 10> kAddressBytes{2, 2, 3, 4, 0, 2, 3, 4, 3, 2};

std::size_t AddressBytes(char type) {
    return type >= '0' && type <= '9' ? kAddressBytes[static_cast<std::size_t>(type - '0')] : 0;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

std::optional<std::vector<std::uint8_t>> HexBytes(std::string_view digits) {
    if (digits.size() % 2 != 0) return std::nullopt;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = HexDigit(digits[i]);
        const int low = HexDigit(digits[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return bytes;
}

void AppendHex(std::string& text, unsigned byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    text += digits[(byte >> 4) & 0xF];
    text += digits[byte & 0xF];
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
    const auto append = [&](unsigned byte) {
        sum += byte & 0xFF;
        AppendHex(line, byte);
    };
    append(static_cast<unsigned>(addressBytes + data.size() + 1));
    for (std::size_t i = addressBytes; i-- > 0;) append((address >> (8 * i)) & 0xFF);
    for (const std::uint8_t byte : data) append(byte);
    AppendHex(line, ~sum & 0xFF);
    return line;
}

}  // namespace vantor
