// The indicator's flash memory: the bytes that an image has put at its addresses, so that what
// arrived can be compared with what was meant. Files are read and written by the caller.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace vantor {

/// Bytes by address; an address never written is not part of it, whatever it would hold.
class FlashMemory {
public:
    /// The memory after all records of `text`, one a line with any line end; blank lines are
    /// skipped. Throws std::invalid_argument, naming the line, for a line that is no record.
    static FlashMemory FromRecords(std::string_view text);

    /// Data records in ascending order, at most 16 bytes each, and an end record; lines end with
    /// CR LF. `FromRecords` of it gives an equal memory.
    std::string ToRecords() const;

    /// Puts `data` at `address` and up; addresses wrap at 32 bits.
    void Write(std::uint32_t address, std::span<const std::uint8_t> data);
    void Clear() { mBytes.clear(); }
    /// Count of addresses written.
    std::size_t Size() const { return mBytes.size(); }

    friend bool operator==(const FlashMemory&, const FlashMemory&) = default;

private:
    std::map<std::uint32_t, std::uint8_t> mBytes;
};

}  // namespace vantor
