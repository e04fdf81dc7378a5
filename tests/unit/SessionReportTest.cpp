// Tests the texts that other programs read: JSON, CSV and times.
#include <gmock/gmock.h>

#include "console/Json.hpp"
#include "console/SessionReport.hpp"

namespace vantor {
namespace {

TEST(Json, EveryTextIsWrittenInAsciiEscapesOrUtf8AndReadsBack) {
    const std::string odd = "a\"b\\c\r\n\t\x7F\x01 \xC3\xB1";
    const std::string line = JsonObject()
                                 .Text("t", odd + "\xFF")
                                 .Number("n", -5)
                                 .Seconds("s", 61007)
                                 .TextOrNull("z", "")
                                 .Flag("f", true)
                                 .Line();
    EXPECT_EQ(line,
              "{\"t\":\"a\\\"b\\\\c\\u000D\\n\\u0009\\u007F\\u0001 \xC3\xB1\xEF\xBF\xBD\",\"n\":-5,"
              "\"s\":61.007,\"z\":null,\"f\":true}\n");
    const std::map<std::string, std::string> members = {
        {"t", odd + "\xEF\xBF\xBD"}, {"n", "-5"}, {"s", "61.007"}, {"f", "true"}};
    EXPECT_EQ(JsonMembers(line), members);
    for (std::size_t cut = 0; cut + 2 < line.size(); ++cut)
        EXPECT_FALSE(JsonMembers(line.substr(0, cut))) << cut;
}

TEST(SessionReport, ARecordQuotesWhatTheSeparatorsWouldDivide) {
    const SessionFacts facts{.start = IsoTime({2026, 1, 2, 3, 4, 5}, -210),
                             .host = "bench",
                             .user = "x",
                             .port = "COM3",
                             .adapter = {},
                             .image = "a,b.run",
                             .note = "say \"4711\"\nnow",
                             .practice = false};
    SessionEnd end;
    end.outcome = FlashOutcome::VerifyFailed;
    end.counts.lines = 41;
    end.counts.resends = 2;
    end.ms = 9050;
    ImageReport report;
    report.sha256 = "00ff";
    EXPECT_EQ(RecordLine(facts, report, end),
              "2026-01-02T03:04:05-03:30,bench,x,COM3,,\"a,b.run\",00ff,41,2,0,verify-failed,5,"
              "9.050,\"say \"\"4711\"\"\nnow\"\r\n");
}

}  // namespace
}  // namespace vantor
