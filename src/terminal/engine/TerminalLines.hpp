// The lines of a terminal: its history and, at their end, its screen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "terminal/engine/Cell.hpp"

namespace vantor {

struct TerminalLine {
    std::vector<Cell> cells;     ///< up to the last one written; blank beyond
    std::int64_t arrivedAt = 0;  ///< time of its first character, 0 if unknown or blank
    bool continues = false;      ///< the text continues in the next line without a line end
};

/// A ring of lines, bounded in lines and in memory. Line numbers count from the first line ever
/// added and do not change until the line is dropped.
class TerminalLines {
public:
    /// Memory of the cells of all lines, also where unused: 16 MB.
    static constexpr std::size_t kMostCells = 2'000'000;

    explicit TerminalLines(std::size_t capacity) : mCapacity(capacity) {}

    std::int64_t First() const { return mFirst; }
    std::size_t Count() const { return mCount; }
    TerminalLine& At(std::size_t index) { return mRing[InRing(index)]; }
    /// Null when the line does not exist. Valid until the next change.
    const TerminalLine* Find(std::int64_t line) const;

    /// Appends a blank line. Drops the oldest line when there are too many, and further ones but
    /// the last `kept` when their cells are too many.
    void Add(std::size_t kept);
    void RemoveLast() { --mCount; }
    /// Drops the oldest `count` lines and frees their memory.
    void Drop(std::size_t count);

    /// Extends `line` to `size` cells; `width` is the usual size.
    void Extend(TerminalLine& line, std::size_t size, std::size_t width);
    /// Forgets a line that was swapped with one of the ring.
    void Release(TerminalLine& line);

private:
    std::size_t InRing(std::size_t index) const;

    std::size_t mCapacity;
    std::vector<TerminalLine> mRing;  // lines dropped at one end are reused at the other
    std::size_t mStart = 0;
    std::size_t mCount = 0;
    std::int64_t mFirst = 0;
    std::size_t mCells = 0;  // capacity of all lines
};

}  // namespace vantor
