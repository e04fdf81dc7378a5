// The transcript of a serial line: the transferred bytes with time and direction.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

#include "console/Traffic.hpp"
#include "platform/Clock.hpp"

namespace vantor {

/// `bytes` in readable form: printable ASCII unchanged, the rest as \r, \n, \t, \\ or \xHH.
std::string Escaped(std::string_view bytes);

/// A file with a line for each transfer: milliseconds since it was opened, direction ("->" to
/// the indicator, "<-" from it, "--" for other events), escaped bytes.
class Transcript : public TrafficListener {
public:
    /// Raises RuntimeError 75 when `path` (UTF-8) cannot be written.
    Transcript(const std::string& path, const Clock& clock);

    void Note(std::string_view mark, std::string_view text);

    void Opened(const std::string& name, const LineSettings& line) override;
    void Refused(const std::string& name, const LineSettings& line,
                 const std::string& reason) override;
    void Closed() override { Note("--", "closed"); }
    void Sent(std::string_view bytes) override { Note("->", Escaped(bytes)); }
    void Received(std::string_view bytes) override { Note("<-", Escaped(bytes)); }
    void Discarded(std::string_view bytes) override {
        if (!bytes.empty()) Received(bytes);
    }

private:
    std::ofstream mFile;
    const Clock& mClock;
    std::uint32_t mStart;
};

}  // namespace vantor
