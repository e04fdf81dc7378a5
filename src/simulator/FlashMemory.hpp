// Sparse model of the indicator's flash memory, for comparing the received image with the intended
// one. Does no file I/O.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace vantor {

/// Bytes by address. Addresses never written have no value and do not take part in comparison.
class FlashMemory {
public:
    /// The memory after all records of `text`, one per line, ended by LF or CR LF; blank lines are
    /// skipped. Throws std::invalid_argument with the line number for a line that is no record.
    static FlashMemory FromRecords(std::string_view text);

    /// Data records in ascending order, at most 16 bytes each, and an end record; lines end with
    /// CR LF. `FromRecords` of the result yields an equal memory.
    std::string ToRecords() const;

    /// Writes `data` from `address` upwards; addresses wrap at 32 bits.
    void Write(std::uint32_t address, std::span<const std::uint8_t> data);
    void Clear() { mBytes.clear(); }
    /// Number of addresses written.
    std::size_t Size() const { return mBytes.size(); }

    friend bool operator==(const FlashMemory&, const FlashMemory&) = default;

private:
    std::map<std::uint32_t, std::uint8_t> mBytes;
};

}  // namespace vantor
