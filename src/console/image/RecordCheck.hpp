// Checks the lines of a hexadecimal image file as records: byte counts, checksums, addresses, the
// end record. Knows Motorola S-records and Intel HEX. Does not keep the data.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

namespace vantor {

enum class RecordFormat : std::uint8_t { None, MotorolaS, IntelHex };

/// How many lines have a fault, and the first of them (from 1).
struct FaultyLines {
    std::uint64_t count = 0;
    std::uint64_t first = 0;

    void Note(std::uint64_t line, std::uint64_t times = 1) {
        if (count == 0 && times > 0) first = line;
        count += times;
    }
};

/// Half-open ranges of addresses; adjacent ones are joined.
class AddressRanges {
public:
    /// Adds `begin` to `end`; false when part of it is already present.
    bool Add(std::uint64_t begin, std::uint64_t end);
    bool Empty() const { return mRanges.empty(); }
    std::uint64_t First() const { return mRanges.begin()->first; }
    std::uint64_t Last() const { return mRanges.rbegin()->second - 1; }

private:
    std::map<std::uint64_t, std::uint64_t> mRanges;  // begin to end
};

class RecordCheck {
public:
    explicit RecordCheck(RecordFormat format) : mFormat(format) {}

    /// Takes line `number` (from 1), which is not empty and has no line end.
    /// False when it is not made of this format's characters.
    bool Take(std::string_view line, std::uint64_t number);

    /// Lines that begin like a record of the format.
    std::uint64_t Alike() const { return mAlike; }
    std::uint64_t DataRecords() const { return mDataRecords; }
    bool HasEnd() const { return mHasEnd; }
    const AddressRanges& Addresses() const { return mAddresses; }

    FaultyLines noRecord;     ///< other characters, or an unknown type
    FaultyLines wrongLength;  ///< longer or shorter than the byte count says
    FaultyLines wrongChecksum;
    FaultyLines wrongAddress;  ///< written before, or beyond the range of the record's type
    FaultyLines wrongCount;    ///< a count record that does not equal the data records before it
    FaultyLines afterEnd;

private:
    static constexpr std::size_t kMostBytes = 260;  // count, address, type, data, checksum

    /// The digits after the start of a record as bytes; false at another character.
    bool Decode(std::string_view digits);
    bool TakeMotorola(char type, std::uint64_t number);
    bool TakeIntel(std::uint64_t number);
    void TakeData(std::uint64_t begin, std::uint64_t length, std::uint64_t limit,
                  std::uint64_t number);
    std::uint64_t Number(std::size_t at, std::size_t count) const;

    RecordFormat mFormat;
    std::array<std::uint8_t, kMostBytes> mBytes{};
    std::size_t mCount = 0;  // bytes in mBytes
    std::uint8_t mSum = 0;
    std::uint64_t mAlike = 0;
    std::uint64_t mDataRecords = 0;
    std::uint64_t mCounted = 0;  // lines of data that a count record counts, damaged ones too
    std::uint64_t mBase = 0;     // of Intel HEX addresses
    bool mHasEnd = false;
    AddressRanges mAddresses;
};

}  // namespace vantor
