#include "terminal/engine/TerminalLines.hpp"

#include <algorithm>
#include <utility>

namespace vantor {

std::size_t TerminalLines::InRing(std::size_t index) const {
    const std::size_t at = mStart + index;
    return at < mCapacity ? at : at - mCapacity;
}

const TerminalLine* TerminalLines::Find(std::int64_t line) const {
    if (line < mFirst || line >= mFirst + static_cast<std::int64_t>(mCount)) return nullptr;
    return &mRing[InRing(static_cast<std::size_t>(line - mFirst))];
}

void TerminalLines::Add(std::size_t kept) {
    if (mCount == mCapacity) {
        mStart = InRing(1);  // its memory is that of the new line
        --mCount;
        ++mFirst;
    }
    while (mCells > kMostCells && mCount > kept) Drop(1);
    // The ring fills from the front, so a missing element is always the next one.
    if (mStart + mCount == mRing.size() && mRing.size() < mCapacity) mRing.emplace_back();
    ++mCount;
    TerminalLine& line = At(mCount - 1);
    line.cells.clear();
    line.arrivedAt = 0;
    line.continues = false;
}

void TerminalLines::Drop(std::size_t count) {
    for (; count > 0; --count) {
        Release(At(0));
        mStart = InRing(1);
        --mCount;
        ++mFirst;
    }
}

void TerminalLines::Extend(TerminalLine& line, std::size_t size, std::size_t width) {
    const std::size_t before = line.cells.capacity();
    // Not twice the memory that the line can fill.
    if (size > before) line.cells.reserve(std::max(size, std::min(2 * before, width)));
    line.cells.resize(size);
    mCells += line.cells.capacity() - before;
}

void TerminalLines::Release(TerminalLine& line) {
    mCells -= line.cells.capacity();
    line = {};
}

}  // namespace vantor
