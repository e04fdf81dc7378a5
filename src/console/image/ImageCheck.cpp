#include "console/image/ImageCheck.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

#include "console/image/Filled.hpp"
#include "console/image/Sha256.hpp"
#include "platform/StringTable.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

/// Collects what concerns characters and line ends.
class Survey {
public:
    explicit Survey(ImageReport& report) : mReport(report) {}

    void TakeLines(std::string_view text);
    void Conclude(std::string_view text);

private:
    void TakeLine(std::string_view line);
    void TakeCharacters(std::string_view line);
    void TakeRecords(const RecordCheck& records);
    void Add(const char* code, Str text, const FaultyLines& lines) {
        if (lines.count > 0) mReport.findings.push_back({code, text, lines.count, lines.first});
    }

    ImageReport& mReport;
    RecordCheck mMotorola{RecordFormat::MotorolaS};
    RecordCheck mIntel{RecordFormat::IntelHex};
    FaultyLines mLineFeeds;
    FaultyLines mPairs;
    FaultyLines mReturns;
    FaultyLines mControls;
    FaultyLines mHigh;
};

void Survey::TakeLines(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        ++mReport.lines;
        if (end != std::string_view::npos) {
            const bool pair = line.ends_with('\r');
            if (pair) line.remove_suffix(1);
            (pair ? mPairs : mLineFeeds).Note(mReport.lines);
        }
        TakeLine(line);
    }
}

void Survey::TakeLine(std::string_view line) {
    if (line.size() > mReport.longest) {
        mReport.longest = line.size();
        mReport.longestLine = mReport.lines;
    }
    if (TrimBlanks(line).empty()) {
        ++mReport.blankLines;
        return;
    }
    const bool motorola = mMotorola.Take(line, mReport.lines);
    const bool intel = mIntel.Take(line, mReport.lines);
    if (!motorola && !intel) TakeCharacters(line);
}

void Survey::TakeCharacters(std::string_view line) {
    // Without branches: of a large binary file they would be as slow as the digest.
    std::uint64_t high = 0;
    std::uint64_t returns = 0;
    std::uint64_t controls = 0;
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        high += static_cast<std::uint64_t>(byte >= 0x80);
        returns += static_cast<std::uint64_t>(byte == '\r');
        controls +=
            static_cast<std::uint64_t>(byte < ' ') + static_cast<std::uint64_t>(byte == 0x7f);
    }
    mHigh.Note(mReport.lines, high);
    mReturns.Note(mReport.lines, returns);
    mControls.Note(mReport.lines, controls - returns);
}

void Survey::Conclude(std::string_view text) {
    mReport.lineFeeds = mLineFeeds.count;
    mReport.pairs = mPairs.count;
    if (mReport.lines == mReport.blankLines) Add("no-lines", Str::FindingNoLines, {1, 0});
    if (mPairs.count > 0 && mLineFeeds.count > 0)
        Add("mixed-line-ends", Str::FindingMixedLineEnds, mPairs.first == 1 ? mLineFeeds : mPairs);
    Add("lone-carriage-returns", Str::FindingCarriageReturns, mReturns);
    Add("control-characters", Str::FindingControlCharacters, mControls);
    Add("non-ascii", Str::FindingNonAscii, mHigh);
    if (!text.empty() && !text.ends_with('\n'))
        Add("no-final-line-end", Str::FindingNoFinalLineEnd, {1, mReport.lines});
    const std::uint64_t half = (mReport.lines - mReport.blankLines) / 2;
    if (mMotorola.Alike() > half) {
        mReport.format = RecordFormat::MotorolaS;
        TakeRecords(mMotorola);
    } else if (mIntel.Alike() > half) {
        mReport.format = RecordFormat::IntelHex;
        TakeRecords(mIntel);
    }
}

void Survey::TakeRecords(const RecordCheck& records) {
    mReport.dataRecords = records.DataRecords();
    mReport.hasAddresses = !records.Addresses().Empty();
    if (mReport.hasAddresses) {
        mReport.firstAddress = records.Addresses().First();
        mReport.lastAddress = records.Addresses().Last();
    }
    Add("not-a-record", Str::FindingNoRecord, records.noRecord);
    Add("wrong-length", Str::FindingWrongLength, records.wrongLength);
    Add("wrong-checksum", Str::FindingWrongChecksum, records.wrongChecksum);
    Add("wrong-address", Str::FindingWrongAddress, records.wrongAddress);
    Add("wrong-record-count", Str::FindingWrongCount, records.wrongCount);
    Add("lines-after-end", Str::FindingAfterEnd, records.afterEnd);
    if (!records.HasEnd()) Add("no-end-record", Str::FindingNoEnd, {1, 0});
}

std::string Hexadecimal(std::uint64_t value) {
    std::array<char, 24> digits{};
    std::snprintf(digits.data(), digits.size(), "%06llX", static_cast<unsigned long long>(value));
    return digits.data();
}

}  // namespace

ImageReport CheckImage(std::string_view bytes) {
    ImageReport report;
    report.size = bytes.size();
    report.sha256 = Sha256Of(bytes);
    Survey survey(report);
    survey.TakeLines(bytes);
    survey.Conclude(bytes);
    return report;
}

std::string NameOf(RecordFormat format, const StringTable& strings) {
    switch (format) {
        case RecordFormat::MotorolaS:
            return strings.Text(Str::FormatMotorola);
        case RecordFormat::IntelHex:
            return strings.Text(Str::FormatIntel);
        case RecordFormat::None:
            break;
    }
    return strings.Text(Str::FormatNone);
}

std::string LineEndsOf(const ImageReport& report, const StringTable& strings) {
    std::string ends;
    const bool mixed = report.pairs > 0 && report.lineFeeds > 0;
    if (report.pairs > 0)
        ends = "CR LF" + (mixed ? " (" + std::to_string(report.pairs) + "), " : "");
    if (report.lineFeeds > 0)
        ends += "LF" + (mixed ? " (" + std::to_string(report.lineFeeds) + ")" : "");
    return ends.empty() ? strings.Text(Str::NoLineEnds) : ends;
}

std::string Described(const ImageFinding& finding, const StringTable& strings) {
    return Filled(strings.Text(finding.text), std::to_string(finding.count),
                  std::to_string(finding.line));
}

std::string Described(const ImageReport& report, const std::string& name,
                      const StringTable& strings) {
    const auto number = [](std::uint64_t value) { return std::to_string(value); };
    const auto line = [&](Str text, const std::string& first, const std::string& second = {}) {
        return Filled(strings.Text(text), first, second) + "\n";
    };
    std::string text = line(Str::CheckFile, name, number(report.size)) +
                       "SHA-256: " + report.sha256 + "\n" +
                       line(Str::CheckLines, number(report.lines), number(report.blankLines)) +
                       line(Str::CheckLongest, number(report.longest), number(report.longestLine)) +
                       line(Str::CheckLineEnds, LineEndsOf(report, strings)) +
                       line(Str::CheckFormat, NameOf(report.format, strings));
    if (report.format != RecordFormat::None)
        text += line(Str::CheckRecords, number(report.dataRecords));
    if (report.hasAddresses)
        text += line(Str::CheckAddresses, Hexadecimal(report.firstAddress),
                     Hexadecimal(report.lastAddress));
    for (const ImageFinding& finding : report.findings)
        text += line(Str::Suspicious, Described(finding, strings));
    return report.findings.empty() ? text + strings.Text(Str::NothingSuspicious) + "\n" : text;
}

}  // namespace vantor
