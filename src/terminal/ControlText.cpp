#include "terminal/ControlText.hpp"

#include <algorithm>
#include <iterator>

#include "support/text/Text.hpp"

namespace vantor {
namespace {

constexpr std::uint16_t kControlColour = 4;  // blue
constexpr int kNumberColumns = 4;            // "<0D>"
constexpr char32_t kPictures = 0x2400;
constexpr char32_t kDelete = 0x7F;
constexpr char32_t kPictureOfDelete = 0x2421;

/// True for what is shown in another form than its own.
bool IsShownAsControl(ByteDecoder::Character character) {
    // U+FFFD that has been received as such is a character.
    return IsControl(character.codePoint) && character.bytes < 3;
}

/// 0 when there is none.
char32_t PictureOf(char32_t control) {
    if (control == kDelete) return kPictureOfDelete;
    return control < U' ' ? kPictures + control : 0;
}

}  // namespace

void ControlText::Layout(int columns, ControlNotation notation, const ByteDecoder& decoder) {
    if (columns != mColumns || notation != mNotation || !decoder.SameAs(mDecoder)) {
        mColumns = columns;
        mNotation = notation;
        mDecoder = decoder;
        Restart();
    }
    Update();
}

void ControlText::Restart() {
    mFirstLine = EndLine();
    mStarts.clear();
    mDivided = mBytes.First();
    mBreak = Break::None;
}

void ControlText::Update() {
    // Nothing is left of the lines after clearing, and when much has arrived while not shown.
    if (mDivided < mBytes.First() || mBytes.First() == mBytes.End()) Restart();
    Divide(mBytes.Read(mDivided, mBytes.End()));
    while (mStarts.size() > 1 &&
           (Whole(mStarts[1]) <= mBytes.First() || mStarts.size() > kMostLines)) {
        mStarts.pop_front();
        ++mFirstLine;
    }
}

void ControlText::Divide(std::string_view bytes) {
    while (!bytes.empty()) {
        const bool lineEnds =
            mBreak == Break::AfterLf || (mBreak == Break::AfterCr && bytes.front() != '\n');
        if (lineEnds || mStarts.empty()) Begin(false);
        const ByteDecoder::Character character = mDecoder.First(bytes);
        if (character.bytes == 0) return;  // until the rest of it arrives
        const int width = WidthOf(character);
        if (mColumn > 0 && mColumn + width > mColumns) Begin(true);
        mColumn += width;
        if (bytes.front() == '\n')
            mBreak = Break::AfterLf;
        else
            mBreak = bytes.front() == '\r' ? Break::AfterCr : Break::None;
        mDivided += static_cast<std::int64_t>(character.bytes);
        bytes.remove_prefix(character.bytes);
    }
}

void ControlText::Begin(bool wrapped) {
    mStarts.push_back({static_cast<std::uint32_t>(mDivided & kOffsetMask), wrapped ? 1U : 0U});
    mColumn = 0;
    mBreak = Break::None;
}

int ControlText::WidthOf(ByteDecoder::Character character) const {
    if (!IsShownAsControl(character)) return 1;
    const bool picture =
        mNotation == ControlNotation::Pictures && PictureOf(character.codePoint) != 0;
    return picture ? 1 : kNumberColumns;
}

std::int64_t ControlText::Whole(Start start) const {
    return mBytes.End() - ((mBytes.End() - static_cast<std::int64_t>(start.offset)) & kOffsetMask);
}

std::int64_t ControlText::OffsetOf(std::int64_t line) const {
    if (mStarts.empty() || line >= EndLine()) return mBytes.End();
    const std::int64_t index = std::max(line - mFirstLine, std::int64_t{0});
    return std::max(Whole(mStarts[static_cast<std::size_t>(index)]), mBytes.First());
}

std::int64_t ControlText::LineOf(std::int64_t offset) const {
    const auto after =
        std::ranges::upper_bound(mStarts, offset, {}, [this](Start start) { return Whole(start); });
    return mFirstLine + std::max<std::int64_t>(after - mStarts.begin() - 1, 0);
}

bool ControlText::Continues(std::int64_t line) const {
    if (line < FirstLine() || line + 1 >= EndLine()) return false;
    return mStarts[static_cast<std::size_t>(line + 1 - mFirstLine)].wrapped != 0;
}

std::optional<std::int64_t> ControlText::ArrivedAt(std::int64_t line) const {
    if (line < FirstLine() || line >= EndLine()) return {};
    return mBytes.TimeAt(OffsetOf(line));
}

std::span<const Cell> ControlText::Line(std::int64_t line) const {
    mCells.clear();
    if (line < FirstLine() || line >= EndLine()) return mCells;
    const std::string bytes = mBytes.Read(OffsetOf(line), OffsetOf(line + 1));
    for (std::string_view rest = bytes; !rest.empty();) {
        ByteDecoder::Character character = mDecoder.First(rest);
        character.bytes = std::max(character.bytes, std::size_t{1});  // incomplete so far
        Append(character, rest.front());
        rest.remove_prefix(character.bytes);
    }
    return mCells;
}

void ControlText::Append(ByteDecoder::Character character, char byte) const {
    if (!IsShownAsControl(character)) {
        mCells.push_back({.character = character.codePoint});
        return;
    }
    const char32_t picture =
        mNotation == ControlNotation::Pictures ? PictureOf(character.codePoint) : 0;
    if (picture != 0) {
        mCells.push_back({.character = picture, .foreground = kControlColour});
        return;
    }
    const char32_t code = character.codePoint;
    const auto number =
        static_cast<std::uint8_t>(code < 0x100 ? code : static_cast<unsigned char>(byte));
    for (const char c : "<" + HexDigits(number) + ">")
        mCells.push_back(
            {.character = static_cast<unsigned char>(c), .foreground = kControlColour});
}

}  // namespace vantor
