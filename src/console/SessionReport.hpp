// What is kept of a session: the JSON objects of its start and end, and its line in a record file.
#pragma once

#include <string>
#include <string_view>

#include "console/ExitStatus.hpp"
#include "console/FlashRun.hpp"
#include "console/JsonView.hpp"
#include "console/image/ImageCheck.hpp"
#include "platform/Clock.hpp"

namespace vantor {

/// "2.05.31"
std::string ProgramVersion();

/// `time` in ISO 8601 with its zone: "2026-11-24T21:18:05+01:00".
std::string IsoTime(const DateTime& time, int utcOffsetMinutes);

/// What is known of a session before it starts.
struct SessionFacts {
    std::string start;  ///< ISO 8601
    std::string host;
    std::string user;
    std::string port;  ///< as the user names it
    std::string adapter;
    std::string image;  ///< the file's name without its folder
    std::string note;
    bool practice = false;
};

/// The result of `--check`.
void WriteCheck(const JsonEvents& events, const std::string& image, const ImageReport& report);
void WriteFindings(const JsonEvents& events, const ImageReport& report, const StringTable& strings);
void WriteStart(const JsonEvents& events, const SessionFacts& facts, const std::string& line,
                const ImageReport& report);
void WriteEnd(const JsonEvents& events, const SessionEnd& end);
/// The end of a run that never reached a session, with its reason: refused, aborted, or an error.
void WriteRefusal(const JsonEvents& events, ExitStatus status, const std::string& reason);

/// The last object of a run with several updates.
void WriteSummary(const JsonEvents& events, std::int64_t done, std::int64_t failed,
                  ExitStatus status);

/// The first line of a record file, with its line end.
std::string_view RecordHeader();
/// A line of a record file by RFC 4180, with its line end. A practice has the adapter "practice":
/// it must not prove the update of a unit.
std::string RecordLine(const SessionFacts& facts, const ImageReport& report, const SessionEnd& end);

}  // namespace vantor
