#include "console/Transcript.hpp"

#include <array>
#include <cstdio>
#include <filesystem>

#include "support/LineSettings.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

std::string Escaped(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\r') {
            text += "\\r";
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\t') {
            text += "\\t";
        } else if (c == '\\') {
            text += "\\\\";
        } else if (byte >= 0x20 && byte < 0x7f) {
            text += c;
        } else {
            constexpr std::string_view kDigits = "0123456789ABCDEF";
            text.append("\\x").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0x0fu]);
        }
    }
    return text;
}

Transcript::Transcript(const std::string& path, const Clock& clock)
    : mFile(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary),
      mClock(clock),
      mStart(clock.Milliseconds()) {
    if (!mFile) throw RuntimeError(ErrorNumber::PathFileAccess);
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
