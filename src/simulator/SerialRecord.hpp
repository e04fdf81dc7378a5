// One S-record of a firmware image: type, address, data and checksum in hexadecimal. Does not
// handle line ends, files or the protocol.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// An S-record. The types in use: S0 header, S1/S2/S3 data at a 16/24/32-bit address, S5/S6
/// count of the records before (in the address field), S7/S8/S9 end with a start address.
struct SerialRecord {
    char type = '0';  ///< '0' to '9' except the reserved '4'
    std::uint32_t address = 0;
    std::vector<std::uint8_t> data;

    bool IsData() const { return type >= '1' && type <= '3'; }
    bool IsEnd() const { return type >= '7'; }

    /// Parses `line`, given without its line end; hexadecimal digits of either case.
    /// None when the type, the length, a digit or the checksum is wrong.
    static std::optional<SerialRecord> Parse(std::string_view line);

    /// The line of this record, without a line end, in upper-case digits. Address, data and
    /// checksum must fit a byte count of 255, and the address must fit the type.
    std::string Format() const;
};

}  // namespace vantor
