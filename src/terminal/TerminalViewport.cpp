#include "terminal/TerminalViewport.hpp"

#include <algorithm>

namespace vantor {

std::int64_t TerminalViewport::FirstShownLine() const {
    if (!mFirst) return mScreen.TopLine();
    return std::clamp(*mFirst, mScreen.FirstLine(), mScreen.TopLine());
}

bool TerminalViewport::ScrollTo(std::int64_t firstLine) {
    const std::int64_t before = FirstShownLine();
    mFirst = firstLine;
    if (firstLine >= mScreen.TopLine()) mFirst.reset();
    return FirstShownLine() != before;
}

}  // namespace vantor
