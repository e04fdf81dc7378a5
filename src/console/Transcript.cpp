#include "console/Transcript.hpp"

#include <array>
#include <cstdio>

#include "support/LineSettings.hpp"
#include "support/Traps.hpp"

namespace vantor {

Transcript::Transcript(const std::string& path, Files& files, const Clock& clock,
                       const RoundTrips& roundTrips)
    : mFile(files.Create(path)),
      mClock(clock),
      mRoundTrips(roundTrips),
      mStart(clock.Milliseconds()) {}

Transcript::~Transcript() {
    for (const std::string& line : mRoundTrips.Summary()) Note("--", line);
}

void Transcript::Note(std::string_view mark, std::string_view text) {
    std::array<char, 16> time{};
    std::snprintf(time.data(), time.size(), "%8lu ",
                  static_cast<unsigned long>(mClock.Milliseconds() - mStart));
    const std::string line = time.data() + std::string(mark) + " " + std::string(text) + "\n";
    // A transcript that cannot be written, as on a full disk, must not end the session.
    Ignoring([&] { mFile->Write(line); });
}

void Transcript::Opened(const std::string& name, const LineSettings& line) {
    Note("--", "opened " + name + " " + FormatLineSettings(line));
}

void Transcript::Refused(const std::string& name, const LineSettings& line,
                         const std::string& reason) {
    Note("--", "cannot open " + name + " " + FormatLineSettings(line) + ": " + reason);
}

}  // namespace vantor
