#include "console/image/RecordCheck.hpp"

#include <iterator>

namespace vantor {
namespace {

constexpr std::uint8_t kNoDigit = 0xff;

constexpr std::array<std::uint8_t, 256> kDigits = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(kNoDigit);
    for (std::uint8_t i = 0; i < 10; ++i) digits[std::size_t{'0'} + i] = i;
    for (std::uint8_t i = 0; i < 6; ++i) {
        digits[std::size_t{'A'} + i] = static_cast<std::uint8_t>(10 + i);
        digits[std::size_t{'a'} + i] = static_cast<std::uint8_t>(10 + i);
    }
    return digits;
}();

std::uint8_t Digit(char c) {
    return kDigits[static_cast<unsigned char>(c)];
}

/// Bytes of the address field of an S-record; 0 for a reserved type.
std::size_t AddressBytes(char type) {
    constexpr std::string_view kBytes = "2234023432";  // by type
    return static_cast<std::size_t>(kBytes[static_cast<std::size_t>(type - '0')] - '0');
}

}  // namespace

bool AddressRanges::Add(std::uint64_t begin, std::uint64_t end) {
    const auto next = mRanges.upper_bound(begin);  // the first range that begins later
    const bool freeAfter = next == mRanges.end() || next->first >= end;
    const auto before = next == mRanges.begin() ? mRanges.end() : std::prev(next);
    if (before == mRanges.end() || before->second < begin) {
        if (freeAfter) mRanges.emplace_hint(next, begin, end);
        return freeAfter;
    }
    if (before->second > begin || !freeAfter) return false;
    before->second = end;
    if (next != mRanges.end() && next->first == end) {
        before->second = next->second;
        mRanges.erase(next);
    }
    return true;
}

bool RecordCheck::Decode(std::string_view digits) {
    mCount = 0;
    unsigned sum = 0;
    for (; digits.size() >= 2 && mCount < mBytes.size(); digits.remove_prefix(2)) {
        const std::uint8_t high = Digit(digits[0]);
        const std::uint8_t low = Digit(digits[1]);
        if ((high | low) == kNoDigit) return false;
        const auto byte = static_cast<std::uint8_t>(high << 4 | low);
        mBytes[mCount++] = byte;
        sum += byte;
    }
    mSum = static_cast<std::uint8_t>(sum);
    for (const char c : digits)
        if (Digit(c) == kNoDigit) return false;
    if (!digits.empty()) mCount = 0;  // half a byte or too long: the length is wrong
    return true;
}

bool RecordCheck::Take(std::string_view line, std::uint64_t number) {
    const bool motorola = mFormat == RecordFormat::MotorolaS;
    if (line[0] != (motorola ? 'S' : ':')) {
        noRecord.Note(number);
        return false;
    }
    ++mAlike;
    if (mHasEnd) afterEnd.Note(number);
    char type = '0';
    if (motorola) {
        if (line.size() > 1) type = line[1];
        if (type < '0' || type > '9' || AddressBytes(type) == 0) {
            noRecord.Note(number);
            return false;
        }
        if (type >= '1' && type <= '3') ++mCounted;
    }
    if (!Decode(line.size() < 2 ? std::string_view() : line.substr(motorola ? 2 : 1))) {
        noRecord.Note(number);
        return false;
    }
    if (!(motorola ? TakeMotorola(type, number) : TakeIntel(number))) wrongLength.Note(number);
    return true;
}

bool RecordCheck::TakeMotorola(char type, std::uint64_t number) {
    const std::size_t address = AddressBytes(type);
    if (mCount < address + 2 || mBytes[0] != mCount - 1) return false;
    if (mSum != 0xff) {
        wrongChecksum.Note(number);
        return true;
    }
    const std::uint64_t value = Number(1, address);
    if (type >= '1' && type <= '3')
        TakeData(value, mCount - address - 2, std::uint64_t{1} << (8 * address), number);
    else if ((type == '5' || type == '6') && value != mCounted)
        wrongCount.Note(number);
    else if (type >= '7')
        mHasEnd = true;
    return true;
}

bool RecordCheck::TakeIntel(std::uint64_t number) {
    constexpr std::size_t kFrame = 5;  // count, address, type, checksum
    constexpr std::array<std::size_t, 6> kLengths = {0, 0, 2, 4, 2, 4};  // by type
    if (mCount < kFrame || mBytes[0] != mCount - kFrame) return false;
    const std::uint8_t type = mBytes[3];
    if (mSum != 0) {
        wrongChecksum.Note(number);
        return true;
    }
    if (type >= kLengths.size()) {
        noRecord.Note(number);
        return true;
    }
    if (type != 0 && mBytes[0] != kLengths[type]) return false;
    constexpr std::uint64_t kSegment = 0x10000;
    if (type == 0)
        TakeData(mBase + Number(1, 2), mBytes[0], mBase + kSegment, number);
    else if (type == 1)
        mHasEnd = true;
    else if (type == 2)
        mBase = Number(4, 2) << 4;
    else if (type == 4)
        mBase = Number(4, 2) << 16;
    return true;
}

void RecordCheck::TakeData(std::uint64_t begin, std::uint64_t length, std::uint64_t limit,
                           std::uint64_t number) {
    ++mDataRecords;
    if (length == 0) return;
    if (begin + length > limit || !mAddresses.Add(begin, begin + length)) wrongAddress.Note(number);
}

std::uint64_t RecordCheck::Number(std::size_t at, std::size_t count) const {
    std::uint64_t value = 0;
    for (std::size_t i = at; i < at + count; ++i) value = value << 8 | mBytes[i];
    return value;
}

}  // namespace vantor
