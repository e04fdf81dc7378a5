#include "console/Transcript.hpp"

#include <array>
#include <cstdio>
#include <filesystem>

#include "support/LineSettings.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

Transcript::Transcript(const std::string& path, const Clock& clock, const RoundTrips& roundTrips)
    : mFile(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary),
      mClock(clock),
      mRoundTrips(roundTrips),
      mStart(clock.Milliseconds()) {
    if (!mFile) throw RuntimeError(ErrorNumber::PathFileAccess);
}

Transcript::~Transcript() {
    for (const std::string& line : mRoundTrips.Summary()) Note("--", line);
}

void Transcript::Note(std::string_view mark, std::string_view text) {
    std::array<char, 16> time{};
    const int length = std::snprintf(time.data(), time.size(), "%8lu",
                                     static_cast<unsigned long>(mClock.Milliseconds() - mStart));
    mFile.write(time.data(), length);
    // Flushed after each line, so that the transcript survives a crash.
    mFile << ' ' << mark << ' ' << text << std::endl;
}

void Transcript::Opened(const std::string& name, const LineSettings& line) {
    Note("--", "opened " + name + " " + FormatLineSettings(line));
}

void Transcript::Refused(const std::string& name, const LineSettings& line,
                         const std::string& reason) {
    Note("--", "cannot open " + name + " " + FormatLineSettings(line) + ": " + reason);
}

}  // namespace vantor
