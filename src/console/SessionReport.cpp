#include "console/SessionReport.hpp"

#include <cstdlib>
#include <initializer_list>

#include "app/base/AppInfo.hpp"
#include "support/Conversions.hpp"

namespace vantor {
namespace {

std::int64_t Signed(std::uint64_t count) {
    return static_cast<std::int64_t>(count);
}

/// `field` as RFC 4180 writes it.
std::string Quoted(const std::string& field) {
    if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
    std::string quoted = "\"";
    for (const char c : field) {
        if (c == '"') quoted += c;
        quoted += c;
    }
    return quoted + '"';
}

std::string SecondsOf(std::uint64_t ms) {
    return std::to_string(ms / 1000) + "." + std::to_string(1000 + ms % 1000).substr(1);
}

}  // namespace

std::string ProgramVersion() {
    const AppInfo app;
    return std::to_string(app.major) + "." + TwoDigits(app.minor) + "." +
           std::to_string(app.revision);
}

std::string IsoTime(const DateTime& time, int utcOffsetMinutes) {
    std::string text = FormatDateTime(time);
    text[text.find(' ')] = 'T';
    const int minutes = std::abs(utcOffsetMinutes);
    return text + (utcOffsetMinutes < 0 ? "-" : "+") + TwoDigits(minutes / 60) + ":" +
           TwoDigits(minutes % 60);
}

void WriteCheck(const JsonEvents& events, const std::string& image, const ImageReport& report) {
    constexpr const char* kFormats[] = {"none", "s-record", "intel-hex"};
    const auto address = [&](std::uint64_t value) {
        return report.hasAddresses ? std::optional(Signed(value)) : std::nullopt;
    };
    events.Write(events.Begin("check")
                     .Text("image", image)
                     .Number("size", Signed(report.size))
                     .Text("sha256", report.sha256)
                     .Number("lines", Signed(report.lines))
                     .Number("blank_lines", Signed(report.blankLines))
                     .Number("longest_line", Signed(report.longest))
                     .Number("lf_line_ends", Signed(report.lineFeeds))
                     .Number("crlf_line_ends", Signed(report.pairs))
                     .Text("format", kFormats[static_cast<std::size_t>(report.format)])
                     .Number("data_records", Signed(report.dataRecords))
                     .NumberOrNull("first_address", address(report.firstAddress))
                     .NumberOrNull("last_address", address(report.lastAddress))
                     .Number("findings", Signed(report.findings.size())));
}

void WriteFindings(const JsonEvents& events, const ImageReport& report,
                   const StringTable& strings) {
    for (const ImageFinding& finding : report.findings) {
        JsonObject object = events.Begin("finding");
        object.Text("code", finding.code).Number("count", Signed(finding.count));
        const auto line = finding.line == 0 ? std::nullopt : std::optional(Signed(finding.line));
        events.Write(object.NumberOrNull("line", line).Text("text", Described(finding, strings)));
    }
}

void WriteStart(const JsonEvents& events, const SessionFacts& facts, const std::string& line,
                const ImageReport& report) {
    events.Write(events.Begin("start")
                     .Text("program", ProgramVersion())
                     .Text("time", facts.start)
                     .Text("line", line)
                     .TextOrNull("adapter", facts.adapter)
                     .Text("image", facts.image)
                     .Number("size", Signed(report.size))
                     .Text("sha256", report.sha256)
                     .Number("lines", Signed(report.lines))
                     .Flag("practice", facts.practice));
}

void WriteEnd(const JsonEvents& events, const SessionEnd& end) {
    events.Write(events.Begin("end")
                     .Text("outcome", CodeOf(end.outcome))
                     .Number("exit", static_cast<int>(StatusOf(end)))
                     .TextOrNull("reason", end.why)
                     .Seconds("seconds", end.ms)
                     .Number("lines", Signed(end.counts.lines))
                     .Number("acknowledged", Signed(end.counts.acknowledged))
                     .Number("resends", Signed(end.counts.resends))
                     .Number("late_replies", Signed(end.counts.lateReplies))
                     .NumberOrNull("round_trip_median_ms", end.counts.medianMs)
                     .NumberOrNull("round_trip_max_ms", end.counts.longestMs)
                     .Number("wire_ms", end.counts.wireMs)
                     .Number("port_ms", end.counts.portMs));
}

void WriteRefusal(const JsonEvents& events, ExitStatus status, const std::string& reason) {
    const char* outcome = status == ExitStatus::Usage ? "refused" : "error";
    if (status == ExitStatus::Aborted) outcome = CodeOf(FlashOutcome::Aborted);
    events.Write(events.Begin("end")
                     .Text("outcome", outcome)
                     .Number("exit", static_cast<int>(status))
                     .Text("reason", reason));
}

void WriteSummary(const JsonEvents& events, std::int64_t done, std::int64_t failed,
                  ExitStatus status) {
    JsonEvents all = events;
    all.SetPort({});
    all.Write(all.Begin("summary")
                  .Number("done", done)
                  .Number("failed", failed)
                  .Number("exit", static_cast<int>(status)));
}

std::string_view RecordHeader() {
    return "start,host,user,port,adapter,image,sha256,lines,resends,late_replies,outcome,exit,"
           "seconds,note\r\n";
}

std::string RecordLine(const SessionFacts& facts, const ImageReport& report,
                       const SessionEnd& end) {
    std::string line;
    for (const std::string& field :
         {facts.start, facts.host, facts.user, facts.port,
          facts.practice ? "practice" : facts.adapter, facts.image, report.sha256,
          std::to_string(end.counts.lines), std::to_string(end.counts.resends),
          std::to_string(end.counts.lateReplies), std::string(CodeOf(end.outcome)),
          std::to_string(static_cast<int>(StatusOf(end.outcome))), SecondsOf(end.ms), facts.note})
        line += (line.empty() ? "" : ",") + Quoted(field);
    return line + "\r\n";
}

}  // namespace vantor
