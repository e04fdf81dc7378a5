// The progress of a session on a text terminal.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Clock.hpp"
#include "platform/Console.hpp"
#include "platform/StringTable.hpp"

namespace vantor {

/// On a terminal, one line redrawn in place: bar, percentage, line number and count, elapsed time,
/// remaining time. When output is redirected, one line per ten per cent.
class ProgressLine {
public:
    /// All must outlive the object.
    ProgressLine(Console& console, const Clock& clock, const StringTable& strings)
        : mConsole(console), mClock(clock), mStrings(strings) {}

    /// Shows `percent` (0 to 100) with the session's texts for the line and the time.
    void Show(int percent, const std::string& status, const std::string& elapsed);

    /// Ends the line, so that other text can follow. The next `Show` starts a new one.
    void Break();
    /// Ends the line and the progress; the next `Show` starts a new progress.
    void Finish();

private:
    void Draw(int percent, const std::string& status, const std::string& elapsed);
    std::string TimeLeft(int percent) const;

    Console& mConsole;
    const Clock& mClock;
    const StringTable& mStrings;
    bool mRunning = false;
    bool mLineOpen = false;
    std::uint32_t mStart = 0;
    std::uint32_t mDrawnAt = 0;
    int mDrawnPercent = -1;
};

}  // namespace vantor
