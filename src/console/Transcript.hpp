// The transcript of a serial line: the transferred bytes with time and direction.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "console/RoundTrips.hpp"
#include "console/Traffic.hpp"
#include "platform/Clock.hpp"
#include "platform/Files.hpp"
#include "support/text/Text.hpp"

namespace vantor {

/// A file with a line for each transfer: milliseconds since it was opened, direction ("->" to
/// the indicator, "<-" from it, "--" for other events), escaped bytes. Ends with the summary of the
/// session.
class Transcript : public TrafficListener {
public:
    /// Creates `path` and raises the errors of `Files`. All services outlive the transcript.
    Transcript(const std::string& path, Files& files, const Clock& clock,
               const RoundTrips& roundTrips);
    ~Transcript() override;
    Transcript(const Transcript&) = delete;
    Transcript& operator=(const Transcript&) = delete;

    void Opened(const std::string& name, const LineSettings& line) override;
    void Refused(const std::string& name, const LineSettings& line,
                 const std::string& reason) override;
    void Closed() override { Note("--", "closed"); }
    void Sent(std::string_view bytes) override { Note("->", Readable(bytes)); }
    void Received(std::string_view bytes) override { Note("<-", Readable(bytes)); }
    void Discarded(std::string_view bytes) override {
        if (!bytes.empty()) Received(bytes);
    }

private:
    static std::string Readable(std::string_view bytes) { return Escaped(bytes, "\r\n\t"); }
    void Note(std::string_view mark, std::string_view text);

    std::unique_ptr<OutputFile> mFile;
    const Clock& mClock;
    const RoundTrips& mRoundTrips;
    std::uint32_t mStart;
};

}  // namespace vantor
