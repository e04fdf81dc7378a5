// The virtual indicator on virtual time: its answers, its pacing, its faults, and what it notices
// of a host that breaks the dialogue. Other tests believe what it says, so it must not be wrong.
#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/SerialRecord.hpp"
#include "simulator/VirtualIndicator.hpp"

namespace vantor {
namespace {

using Faults = std::vector<std::string>;

constexpr Micros kSecond = 1'000'000;
constexpr Micros kMoment = kSecond / 10;
const std::vector<std::string> kImage{
    SerialRecord{'0', 0, {'M', '4', '0'}}.Format(),
    SerialRecord{'2', 0x1000, {0x01, 0x02, 0x03, 0x04}}.Format(),
    SerialRecord{'2', 0x1004, {0x05, 0x06, 0x07, 0x08}}.Format(),
    SerialRecord{'5', 2, {}}.Format(),
    SerialRecord{'8', 0x1000, {}}.Format(),
};

FlashMemory ImageMemory() {
    std::string text;
    for (const std::string& line : kImage) text += line + "\n";
    return FlashMemory::FromRecords(text);
}

IndicatorOptions Options(const Faults& faults, bool paced = false) {
    IndicatorOptions options;
    options.expected = ImageMemory();
    options.paced = paced;
    if (paced) options.think = 700;
    for (const std::string& fault : faults) options.faults.push_back(ParseFault(fault));
    return options;
}

/// A host on virtual time. It hears bytes exactly when they come out.
class Host {
public:
    explicit Host(IndicatorOptions options = {}) : indicator(std::move(options)) {}

    void Open(std::uint32_t speed) { indicator.HostLine({speed, Parity::None, 8, 2}, now); }
    void Close() { indicator.HostClosed(now); }
    void Send(std::string_view bytes) { indicator.Receive(bytes, now); }

    /// What comes out in the next `time`.
    std::string Hear(Micros time) {
        const Micros end = now + time;
        std::string heard = indicator.Transmit(now);
        for (auto due = indicator.NextDue(); due && *due <= end; due = indicator.NextDue()) {
            now = std::max(now, *due);
            const std::string some = indicator.Transmit(now);
            if (!some.empty()) heardAt.push_back(now);
            heard += some;
        }
        now = end;
        return heard;
    }
    std::string Ask(std::string_view line, Micros time = kMoment) {
        Send(std::string(line) + "\r");
        return Hear(time);
    }
    /// The answers to `lines`, a blank behind each instead of its line end; "-" for none.
    std::string AskAll(const std::vector<std::string>& lines, Micros time = kMoment) {
        std::string answers;
        for (const std::string& line : lines) {
            const std::string answer = Ask(line, time);
            answers += (answer.empty() ? "-" : answer.substr(0, answer.find('\r'))) + " ";
        }
        return answers;
    }
    /// Opens, and takes the dialogue to the point where image lines are expected.
    void BeginLoad() {
        Open(38400);
        ASSERT_EQ(AskAll({"TRAV", "BAUD 115200"}), "OK OK ");
        Close();
        Open(115200);
        ASSERT_EQ(Ask("SYSLOAD"), "OK\r\n");
    }
    void SendImage() { ASSERT_EQ(AskAll(kImage), "OK OK OK OK OK "); }

    VirtualIndicator indicator;
    Micros now = 5 * kSecond;
    std::vector<Micros> heardAt;
};

// ---- The dialogue ----

TEST(BootMonitor, AWholeSessionEndsInTheImageInMemoryAndTheNextStartsAnew) {
    Host host(Options({}));
    host.Open(38400);
    EXPECT_EQ(host.Ask(" \r "), "") << "wake-up blanks must not be answered";
    EXPECT_FALSE(host.indicator.SessionOver());
    host.BeginLoad();
    host.SendImage();
    EXPECT_EQ(host.Hear(kSecond - kMoment - 1), "") << "verdict before flash was written";
    EXPECT_EQ(host.Hear(1), "DONE\r\n");
    EXPECT_FALSE(host.indicator.Booted());
    EXPECT_EQ(host.Ask("BOOT"), "");
    EXPECT_TRUE(host.indicator.Booted() && host.indicator.SessionOver());
    host.Close();
    EXPECT_EQ(host.indicator.Memory(), ImageMemory()) << "memory lost with the power";
    host.BeginLoad();
    EXPECT_EQ(host.indicator.Memory().Size(), 0U);
    EXPECT_FALSE(host.indicator.SessionOver());
    EXPECT_TRUE(host.indicator.Violations().empty());
}

TEST(BootMonitor, EachLineIsAnsweredByItsPlaceInTheDialogue) {
    const struct {
        const char* what;
        std::vector<std::string> lines;
        const char* answers;
    } kCases[] = {
        {"commands before TRAV", {"SYSLOAD", "BAUD 115200", "TRAV "}, "?? ?? ?? "},
        {"unknown command", {"TRAV", "LOAD", "SYSLOAD"}, "OK ?? OK "},
        {"speeds that are none", {"TRAV", "BAUD 12345", "BAUD 38400x"}, "OK ?? ?? "},
        {"bad checksum", {"TRAV", "SYSLOAD", "S2080010000102030400"}, "OK OK ?? "},
        {"short count", {"TRAV", "SYSLOAD", "S20700100001020304DE"}, "OK OK ?? "},
        {"odd digit", {"TRAV", "SYSLOAD", "S2080010000102030"}, "OK OK ?? "},
        {"reserved type, loose text", {"TRAV", "SYSLOAD", "S4030000FC", "TRAV"}, "OK OK ?? ?? "},
        {"data behind the end", {"TRAV", "SYSLOAD", "S9030000FC", "S1030000FC"}, "OK OK OK ?? "},
        {"16 bits", {"TRAV", "SYSLOAD", "S10400100AE1"}, "OK OK OK "},
        {"32 bits", {"TRAV", "SYSLOAD", "S306000010000ADF"}, "OK OK OK "},
        {"blank line", {"TRAV", "SYSLOAD", "  "}, "OK OK - "}};
    for (const auto& c : kCases) {
        Host host;
        host.Open(38400);
        EXPECT_EQ(host.AskAll(c.lines), c.answers) << c.what;
    }
}

TEST(BootMonitor, RepeatedLinesDoNoHarmAndMissingOnesAreNotVerified) {
    Host host(Options({}));
    host.BeginLoad();
    for (const std::string& line : kImage) EXPECT_EQ(host.AskAll({line, line}), "OK OK ");
    EXPECT_EQ(host.Hear(kSecond - 2 * kMoment), "DONE\r\n") << "the repeat restarted the writing";
    EXPECT_EQ(host.Hear(60 * kSecond), "");
    EXPECT_EQ(host.indicator.Verdicts(), 1U);

    Host missing(Options({}));
    missing.BeginLoad();
    EXPECT_EQ(missing.AskAll({kImage[1], kImage[4]}), "OK OK ");
    EXPECT_EQ(missing.Hear(10 * kSecond), "VERIFY FAILED\r\n");
    EXPECT_EQ(missing.Ask("BOOT"), "??\r\n");
    EXPECT_FALSE(missing.indicator.Booted());
}

TEST(BootMonitor, ACloseEndsTheSessionUnlessTheHostIsChangingItsSpeed) {
    Host host;
    host.BeginLoad();
    host.Ask(kImage[0]);
    EXPECT_FALSE(host.indicator.SessionOver());
    host.Close();
    EXPECT_TRUE(host.indicator.SessionOver());

    host.Open(38400);
    host.Send("TRAV\rBAUD 115200\r");
    host.Close();
    host.Open(115200);
    EXPECT_EQ(host.Hear(kSecond), "") << "answers to a closed port are lost";
    host.Close();
    host.Hear(9 * kSecond);
    EXPECT_FALSE(host.indicator.SessionOver());
    host.Hear(2 * kSecond);
    EXPECT_TRUE(host.indicator.SessionOver()) << "a host that stays away is waited for for ever";
}

// ---- What the host did wrong ----

TEST(Violation, AWrongSpeedOrALineFeedIsNotedOnceASession) {
    Host host;
    host.Open(9600);
    EXPECT_EQ(host.Ask("TRAV"), "");
    ASSERT_EQ(host.indicator.Violations().size(), 1U);
    const std::string note = host.indicator.Violations()[0];
    EXPECT_TRUE(note.find("9600") != note.npos && note.find("38400") != note.npos) << note;
    host.Open(38400);
    EXPECT_EQ(host.AskAll({"TRAV", "BAUD 115200", "SYSLOAD"}), "OK OK - ");
    EXPECT_EQ(host.indicator.Violations().size(), 2U) << "not heard at the speed before BAUD";
    host.Open(115200);
    EXPECT_EQ(host.Ask("SYSLOAD"), "OK\r\n");
    EXPECT_EQ(host.indicator.Violations().size(), 2U);
    host.Send("\n\n");
    EXPECT_EQ(host.indicator.Violations().size(), 3U);
}

TEST(Violation, OnlyBootEndsASessionWellAfterDone) {
    const struct {
        const char* bytes;
        std::size_t violations;
        bool booted;
    } kCases[] = {{"BOOT\r", 0, true},    {"TRAV\r", 1, false},  {"BOOT", 1, false},
                  {"BOOT\r\n", 1, false}, {"\rBOOT\r", 1, true}, {"", 0, false}};
    for (const auto& c : kCases) {
        Host host;
        host.BeginLoad();
        host.SendImage();
        ASSERT_EQ(host.Hear(10 * kSecond), "DONE\r\n");
        host.Send(c.bytes);
        host.Close();
        EXPECT_EQ(host.indicator.Violations().size(), c.violations) << c.bytes;
        EXPECT_EQ(host.indicator.Booted(), c.booted) << c.bytes;
        EXPECT_TRUE(host.indicator.SessionOver()) << c.bytes;
    }
}

// ---- Faults ----

TEST(LineFault, ShowsOnItsLineOnlyAndOnlySoOften) {
    const struct {
        const char* fault;
        const char* answers;  // to the line's first arrivals
        bool taken;           // by the first of them
    } kCases[] = {{"nak@1", "?? OK OK ", false},
                  {"nak@1x2", "?? ?? OK ", false},
                  {"silent@1", "- OK OK ", false},
                  {"drop@1", "?? OK OK ", false},
                  {"drop@1x2", "?? ?? OK ", false},
                  {"garble@1", "?? OK OK ", false},
                  {"noise@1", "~\x15#\xF1 \x80|OK OK OK ", true},
                  {"split@1", "OK OK OK ", true},
                  {"done@1", "DONE OK OK ", true},
                  {"verify@1", "VERIFY FAILED OK OK ", true}};
    for (const auto& c : kCases) {
        Host host(Options({c.fault}));
        host.BeginLoad();
        ASSERT_EQ(host.Ask(kImage[0]), "OK\r\n");
        std::string answers = host.AskAll({kImage[1]}, kSecond);
        EXPECT_EQ(host.indicator.Memory().Size(), c.taken ? 4U : 0U) << c.fault;
        answers += host.AskAll({kImage[1], kImage[1]}, kSecond);
        EXPECT_EQ(answers, c.answers) << c.fault;
        EXPECT_EQ(host.AskAll({kImage[2], kImage[3], kImage[4]}), "OK OK OK ") << c.fault;
        EXPECT_EQ(host.Hear(10 * kSecond), "DONE\r\n") << "damage left in memory: " << c.fault;
    }
}

TEST(LineFault, ALateAcknowledgementOfTheEndIsNotOvertakenByTheVerdict) {
    Host host(Options({"late=1500@4"}));
    host.BeginLoad();
    EXPECT_EQ(host.AskAll(kImage), "OK OK OK OK - ");
    EXPECT_EQ(host.Hear(1'500'000 - kMoment - 1), "");
    EXPECT_EQ(host.Hear(1), "OK\r\n");
    EXPECT_EQ(host.Hear(kSecond - 1), "");
    EXPECT_EQ(host.Hear(1), "DONE\r\n");
}

TEST(LineFault, SplitPiecesComeApart) {
    Host host(Options({"split@0", "split-verdict"}));
    host.BeginLoad();
    host.heardAt.clear();
    const Micros start = host.now;
    host.Ask(kImage[0], kSecond);
    EXPECT_EQ(host.heardAt, (std::vector<Micros>{start + 30'000, start + 60'000, start + 90'000}));
    for (std::size_t i = 1; i < kImage.size(); ++i) host.Ask(kImage[i]);
    EXPECT_EQ(host.Hear(kSecond - kMoment), "DON");
    EXPECT_EQ(host.Hear(99'999), "");
    EXPECT_EQ(host.Hear(1), "E\r\n");
}

TEST(LineFault, HangupEndsTheSessionForGoodAndTheOthersLeaveTheNextOneAlone) {
    Host host(Options({"hangup@2"}));
    host.BeginLoad();
    EXPECT_EQ(host.AskAll({kImage[0], kImage[1]}), "OK OK ");
    EXPECT_FALSE(host.indicator.HungUp());
    EXPECT_EQ(host.AskAll({kImage[2], "TRAV"}), "- - ");
    EXPECT_TRUE(host.indicator.HungUp() && host.indicator.SessionOver());
    EXPECT_FALSE(host.indicator.NextDue());

    Host failed(Options({"nak@0x4"}));
    failed.BeginLoad();
    EXPECT_EQ(failed.AskAll(std::vector<std::string>(4, kImage[0])), "?? ?? ?? ?? ");
    failed.Close();
    failed.BeginLoad();
    failed.SendImage();
}

TEST(PhaseFault, ShowsInItsPhaseOnly) {
    const struct {
        const char* fault;
        const char* answers;  // to TRAV, BAUD and SYSLOAD
        const char* verdict;
    } kCases[] = {{"no-trav", "?? ?? ?? ", ""},
                  {"no-trav=silent", "- ?? ?? ", ""},
                  {"no-baud", "OK ?? OK ", "DONE\r\n"},
                  {"no-baud=silent", "OK - OK ", "DONE\r\n"},
                  {"no-sysload", "OK OK ?? ", ""},
                  {"no-sysload=silent", "OK OK - ", ""},
                  {"verify-failed", "OK OK OK ", "VERIFY FAILED\r\n"},
                  {"no-verdict", "OK OK OK ", ""},
                  {"split-verdict", "OK OK OK ", "DONE\r\n"}};
    for (const auto& c : kCases) {
        Host host(Options({c.fault}));
        host.Open(38400);
        EXPECT_EQ(host.AskAll({"TRAV", "BAUD 38400", "SYSLOAD"}), c.answers) << c.fault;
        host.AskAll(kImage);
        EXPECT_EQ(host.Hear(60 * kSecond), c.verdict) << c.fault;
    }
}

TEST(FaultSpelling, IsReadOrRejectedByName) {
    EXPECT_EQ(ParseFault("nak@7"), (Fault{FaultKind::Nak, 7, 1, 0, false}));
    EXPECT_EQ(ParseFault("garble@0x4"), (Fault{FaultKind::Garble, 0, 4, 0, false}));
    EXPECT_EQ(ParseFault("late=1500@12x2"), (Fault{FaultKind::Late, 12, 2, 1500, false}));
    EXPECT_EQ(ParseFault("no-baud=silent"), (Fault{FaultKind::NoBaud, 0, 1, 0, true}));
    for (const std::string bad :
         {"", "nak", "nak@", "nak@-1", "nak@1x", "nak@1x0", "nak@1x2x3", "nak@99999999999999999999",
          "nak=5@1", "late@3", "late=@3", "late=0@3", "late=1s@3", "nap@3", "no-trav@3",
          "no-trav=loud", "no-verdict=silent", "@1"})
        try {
            ParseFault(bad);
            ADD_FAILURE() << "taken: " << bad;
        } catch (const std::invalid_argument& error) {
            EXPECT_NE(std::string_view(error.what()).find('"' + bad + '"'), std::string::npos);
        }
}

// ---- Pacing ----

constexpr Nanos Characters(std::int64_t count, std::int64_t bitsPerSecond) {
    return (count * 11 * Nanos{1'000'000'000} + bitsPerSecond - 1) / bitsPerSecond;
}

TEST(Pacing, ALongRunDoesNotDriftAndIdleTimeEarnsNoCredit) {
    constexpr std::int64_t count = 153'000;  // a whole image
    UartPacing run;
    Nanos end = 0;
    for (std::int64_t i = 0; i < count; ++i) end = run.Next(7, 11, 115200);
    EXPECT_EQ(end, 7 + Characters(count, 115200));

    UartPacing pacing;
    EXPECT_EQ(pacing.Next(0, 10, 10'000), 1'000'000);
    EXPECT_EQ(pacing.Next(5'000'000, 10, 10'000), 6'000'000);
    EXPECT_EQ(pacing.Next(5'000'000, 10, 10'000), 7'000'000);
    EXPECT_EQ(pacing.Next(6'500'000, 10, 100'000), 7'100'000) << "a change of speed waits";
}

TEST(Pacing, TheAnswerComesWhenLineAndThinkingAndItsOwnBytesHavePassed) {
    Host host(Options({}, true));
    host.BeginLoad();
    host.Hear(kSecond);
    host.heardAt.clear();
    const std::string line = kImage[1] + "\r";
    const Nanos heard = Characters(static_cast<std::int64_t>(line.size()), 115200) + 700'000;
    std::vector<Micros> expected;
    for (int i = 1; i <= 4; ++i)
        expected.push_back(host.now + (heard + Characters(i, 115200) + 999) / 1000);
    // In two parts, the second while the first is on the wire: they pass without a pause.
    host.Send(line.substr(0, 10));
    host.Hear(300);
    host.Send(line.substr(10));
    EXPECT_EQ(host.Hear(kSecond), "OK\r\n");
    EXPECT_EQ(host.heardAt, expected);
}

TEST(Pacing, BaudIsAcknowledgedAtTheSpeedBeforeItAndBootArrivesBehindAClose) {
    Host host(Options({}, true));
    host.Open(38400);
    host.Ask("TRAV");
    const Micros start = host.now;
    host.Ask("BAUD 115200");
    EXPECT_EQ(host.heardAt.back(), start + (Characters(12 + 4, 38400) + 700'000 + 999) / 1000);
    host.Open(115200);
    host.Ask("SYSLOAD");
    host.SendImage();
    ASSERT_EQ(host.Hear(10 * kSecond), "DONE\r\n");
    host.Send("BOOT\r");
    host.Close();
    EXPECT_FALSE(host.indicator.Booted()) << "arrived before its time";
    host.Hear(kSecond);
    EXPECT_TRUE(host.indicator.Booted());
}

TEST(FlashMemoryRecords, RoundTripKeepsGapsAndWideAddresses) {
    FlashMemory memory;
    const std::vector<std::uint8_t> data(40, 0xA5);
    memory.Write(0, std::span(data).first(3));
    memory.Write(0xFFF8, data);
    EXPECT_EQ(FlashMemory::FromRecords(memory.ToRecords()), memory);
    memory.Write(0x0100'0000, data);
    EXPECT_EQ(FlashMemory::FromRecords(memory.ToRecords()), memory);
    EXPECT_THROW(FlashMemory::FromRecords("S9030000FC\r\n\r\nS1030000FF\r\n"),
                 std::invalid_argument);
}

}  // namespace
}  // namespace vantor
