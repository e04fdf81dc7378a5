// The received bytes as text with its control characters made visible.
#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "terminal/ByteDecoder.hpp"
#include "terminal/ReceivedBytes.hpp"
#include "terminal/ShownText.hpp"
#include "terminal/TerminalOptions.hpp"

namespace vantor {

/// A new line begins after LF, and after a CR that no LF follows; long lines are wrapped. Control
/// characters are shown as `␍` or `<0D>`, bytes that are no character as `<C3>`.
class ControlText : public ShownText {
public:
    static constexpr std::size_t kMostLines = 1024 * 1024;

    /// `bytes` outlives the text.
    explicit ControlText(const ReceivedBytes& bytes) : mBytes(bytes) {}

    /// Divides all bytes into lines of `columns` cells. Does nothing when all is as before.
    void Layout(int columns, ControlNotation notation, const ByteDecoder& decoder);
    /// Divides the bytes that have been appended since the last call of either; drops lines whose
    /// bytes are no longer kept. No other function divides, so none needs to be called while the
    /// text is not shown.
    void Update();

    std::int64_t FirstLine() const override { return mFirstLine; }
    std::int64_t EndLine() const override {
        return mFirstLine + static_cast<std::int64_t>(mStarts.size());
    }
    std::span<const Cell> Line(std::int64_t line) const override;
    bool Continues(std::int64_t line) const override;
    std::optional<std::int64_t> ArrivedAt(std::int64_t line) const override;

    /// The offset of the first byte of `line`, and the line of the byte at `offset`; the nearest
    /// one if it does not exist.
    std::int64_t OffsetOf(std::int64_t line) const;
    std::int64_t LineOf(std::int64_t offset) const;

private:
    static constexpr std::int64_t kOffsetMask = 0x7FFFFFFF;
    enum class Break : std::uint8_t { None, AfterCr, AfterLf };
    /// The low 31 bits of an offset: fewer bytes are kept. A flood of line ends makes many of them.
    struct Start {
        std::uint32_t offset : 31;
        std::uint32_t wrapped : 1;  // the line above continues in this one
    };

    void Restart();
    void Divide(std::string_view bytes);
    void Begin(bool wrapped);
    int WidthOf(ByteDecoder::Character character) const;
    std::int64_t Whole(Start start) const;
    void Append(ByteDecoder::Character character, char byte) const;

    const ReceivedBytes& mBytes;
    int mColumns = 0;  // 0 before the first layout
    ControlNotation mNotation = ControlNotation::Pictures;
    ByteDecoder mDecoder;

    std::deque<Start> mStarts;
    std::int64_t mFirstLine = 0;
    std::int64_t mDivided = 0;  // offset of the first byte that belongs to no line yet
    int mColumn = 0;            // where it will stand
    Break mBreak = Break::None;

    mutable std::vector<Cell> mCells;  // of the last line asked for
};

}  // namespace vantor
