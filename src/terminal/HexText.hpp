// The received bytes as a hex dump: offset, two groups of eight bytes, characters.
#pragma once

#include <cstdint>
#include <vector>

#include "terminal/ByteDecoder.hpp"
#include "terminal/ReceivedBytes.hpp"
#include "terminal/ShownText.hpp"

namespace vantor {

/// `00000010  31 32 2E 35 20 6B 67 0D  0A 31 32 2E 36 20 6B 67  12.5 kg..12.6 kg`. On a window that
/// is too narrow for that, a line has one group of eight bytes. Line numbers are those of the
/// offset divided by the bytes of a line. Bytes that are no longer kept are blank.
class HexText : public ShownText {
public:
    /// `bytes` outlives the text.
    explicit HexText(const ReceivedBytes& bytes) : mBytes(bytes) {}

    void Layout(int columns, const ByteDecoder& decoder);

    std::int64_t FirstLine() const override { return mBytes.First() / mPerLine; }
    std::int64_t EndLine() const override {
        const bool empty = mBytes.First() == mBytes.End();
        return empty ? FirstLine() : (mBytes.End() + mPerLine - 1) / mPerLine;
    }
    std::span<const Cell> Line(std::int64_t line) const override;
    bool Continues(std::int64_t) const override { return false; }
    std::optional<std::int64_t> ArrivedAt(std::int64_t line) const override;
    /// The bytes or their characters, without a break between lines.
    std::u32string Searched(std::int64_t line, SearchIn what) const override;
    bool SearchContinues(std::int64_t line) const override { return line + 1 < EndLine(); }
    int SearchIndex(int column) const override;

    std::int64_t OffsetOf(std::int64_t line) const { return line * mPerLine; }
    std::int64_t LineOf(std::int64_t offset) const { return offset / mPerLine; }

private:
    int HexColumn(int index) const;
    int CharacterColumn(int index) const;

    const ReceivedBytes& mBytes;
    int mPerLine = 16;
    ByteDecoder mDecoder;
    mutable std::vector<Cell> mCells;  // of the last line asked for
};

}  // namespace vantor
