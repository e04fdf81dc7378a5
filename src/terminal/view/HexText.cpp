#include "terminal/view/HexText.hpp"

#include <algorithm>
#include <string_view>

namespace vantor {
namespace {

constexpr int kGroup = 8;
constexpr int kOffsetDigits = 8;
constexpr int kGap = 2;          // before each group and before the characters
constexpr int kByteColumns = 3;  // two digits and a blank

constexpr char32_t kDropped = 0xFFFF;  // equals no byte and no character

constexpr std::string_view kDigits = "0123456789ABCDEF";

constexpr int kGroupColumns = kGroup * kByteColumns - 1 + kGap;

constexpr int FirstCharacterColumn(int perLine) {
    return kOffsetDigits + kGap + perLine / kGroup * kGroupColumns;
}

void PutHex(std::vector<Cell>& cells, int column, std::uint64_t number, int digits) {
    for (auto at = cells.begin() + column + digits; digits > 0; --digits, number >>= 4U)
        (--at)->character = static_cast<char32_t>(kDigits[number & 0xFU]);
}

}  // namespace

void HexText::Layout(int columns, const ByteDecoder& decoder) {
    mPerLine = columns < FirstCharacterColumn(2 * kGroup) + 2 * kGroup ? kGroup : 2 * kGroup;
    mDecoder = decoder;
}

int HexText::HexColumn(int index) const {
    return kOffsetDigits + kGap + index / kGroup * kGroupColumns + index % kGroup * kByteColumns;
}

int HexText::CharacterColumn(int index) const {
    return FirstCharacterColumn(mPerLine) + index;
}

std::span<const Cell> HexText::Line(std::int64_t line) const {
    mCells.clear();
    if (line < FirstLine() || line >= EndLine()) return mCells;
    mCells.resize(static_cast<std::size_t>(CharacterColumn(mPerLine)));
    PutHex(mCells, 0, static_cast<std::uint64_t>(OffsetOf(line)), kOffsetDigits);
    for (int i = 0; i < mPerLine; ++i) {
        const std::int64_t offset = OffsetOf(line) + i;
        if (offset < mBytes.First() || offset >= mBytes.End()) continue;
        const char byte = mBytes.At(offset);
        const char32_t character = mDecoder.Shown(byte);
        PutHex(mCells, HexColumn(i), static_cast<unsigned char>(byte), 2);
        mCells[static_cast<std::size_t>(CharacterColumn(i))].character =
            character == 0 ? U'.' : character;
    }
    return mCells;
}

std::optional<std::int64_t> HexText::ArrivedAt(std::int64_t line) const {
    return mBytes.TimeAt(std::max(OffsetOf(line), mBytes.First()));
}

void HexText::Searched(std::int64_t line, SearchIn what, std::u32string& seen) const {
    seen.clear();
    const std::int64_t end = std::min(OffsetOf(line + 1), mBytes.End());
    for (std::int64_t offset = OffsetOf(line); offset < end; ++offset) {
        if (offset < mBytes.First())
            seen += kDropped;
        else if (what == SearchIn::Bytes)
            seen += static_cast<unsigned char>(mBytes.At(offset));
        else
            seen += mDecoder.Shown(mBytes.At(offset));
    }
}

int HexText::SearchIndex(int column) const {
    for (int i = 0; i < mPerLine; ++i) {
        const int digit = column - HexColumn(i);
        if (digit == 0 || digit == 1 || column == CharacterColumn(i)) return i;
    }
    return -1;
}

}  // namespace vantor
