#include "console/ProgressLine.hpp"

#include <algorithm>

#include "console/image/Filled.hpp"
#include "support/Conversions.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

constexpr std::uint32_t kRedrawMs = 100;
constexpr std::size_t kBarWidth = 20;

std::string Bar(int percent) {
    const std::size_t full = kBarWidth * static_cast<std::size_t>(percent) / 100;
    return "[" + std::string(full, '#') + std::string(kBarWidth - full, '-') + "]";
}

std::string Percentage(int percent) {
    const std::string digits = std::to_string(percent);
    return std::string(3 - std::min<std::size_t>(3, digits.size()), ' ') + digits + " %";
}

}  // namespace

void ProgressLine::Show(int percent, const std::string& status, const std::string& elapsed) {
    const std::uint32_t now = mClock.Milliseconds();
    if (!mRunning) {
        mRunning = true;
        mStart = now;
        mDrawnPercent = -1;
    }
    if (mConsole.OutputIsTerminal()) {
        if (percent == mDrawnPercent && now - mDrawnAt < kRedrawMs) return;
    } else if (percent / 10 == mDrawnPercent / 10 && mDrawnPercent >= 0) {
        return;
    }
    mDrawnAt = now;
    mDrawnPercent = percent;
    Draw(percent, status, elapsed);
}

void ProgressLine::Draw(int percent, const std::string& status, const std::string& elapsed) {
    const std::string numbers = Percentage(percent) + "  " + status + "  " + elapsed;
    if (!mConsole.OutputIsTerminal()) {
        mConsole.Write(numbers + "\n");
        return;
    }
    std::string line = Bar(percent) + " " + numbers;
    if (percent > 0 && percent < 100)
        line += "  " + Filled(mStrings.Text(Str::TimeLeft), TimeLeft(percent));
    // One column less than the terminal width: a full line would wrap and scroll.
    mConsole.Write("\r" + FixedWidth(line, std::max(mConsole.Columns(), 2u) - 1));
    mLineOpen = true;
}

std::string ProgressLine::TimeLeft(int percent) const {
    const std::uint64_t elapsedMs = mClock.Milliseconds() - mStart;
    const auto left = static_cast<std::int32_t>(elapsedMs * static_cast<unsigned>(100 - percent) /
                                                static_cast<unsigned>(percent) / 1000);
    return TimeOfDay(left);
}

void ProgressLine::Break() {
    if (mLineOpen) mConsole.Write("\n");
    mLineOpen = false;
}

void ProgressLine::Finish() {
    Break();
    mRunning = false;
}

}  // namespace vantor
