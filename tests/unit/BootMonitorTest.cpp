// The virtual indicator on virtual time: its answers, its pacing, its faults, and what it notices
// of a host that breaks the dialogue. Other tests believe what it says, so it must not be wrong.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/SerialRecord.hpp"
#include "simulator/VirtualIndicator.hpp"

namespace vantor {
namespace {

constexpr Micros kSecond = 1'000'000;
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

LineSettings At(std::uint32_t bitsPerSecond) {
    return {bitsPerSecond, Parity::None, 8, 2};
}

// A host on virtual time. It hears bytes exactly when they come out.
class Host {
public:
    explicit Host(IndicatorOptions options = {}) : mIndicator(std::move(options)) {}

    void Open(std::uint32_t bitsPerSecond) { mIndicator.HostLine(At(bitsPerSecond), mNow); }
    void Close() { mIndicator.HostClosed(mNow); }
    void Send(std::string_view bytes) { mIndicator.Receive(bytes, mNow); }

    // What comes out in the next `time`.
    std::string Hear(Micros time) {
        const Micros end = mNow + time;
        std::string heard = mIndicator.Transmit(mNow);
        for (auto due = mIndicator.NextDue(); due && *due <= end; due = mIndicator.NextDue()) {
            mNow = std::max(mNow, *due);
            const std::string some = mIndicator.Transmit(mNow);
            if (!some.empty()) mHeardAt.push_back(mNow);
            heard += some;
        }
        mNow = end;
        return heard;
    }
    std::string Ask(std::string_view line, Micros time = kSecond / 10) {
        Send(std::string(line) + "\r");
        return Hear(time);
    }
    // Opens, and takes the dialogue to the point where image lines are expected.
    void BeginLoad() {
        Open(38400);
        ASSERT_EQ(Ask("TRAV"), "OK\r\n");
        ASSERT_EQ(Ask("BAUD 115200"), "OK\r\n");
        Close();
        Open(115200);
        ASSERT_EQ(Ask("SYSLOAD"), "OK\r\n");
    }
    void SendImage() {
        for (const std::string& line : kImage) ASSERT_EQ(Ask(line), "OK\r\n") << line;
    }

    VirtualIndicator& Indicator() { return mIndicator; }
    const std::vector<std::string>& Violations() const { return mIndicator.Violations(); }
    Micros Now() const { return mNow; }
    const std::vector<Micros>& HeardAt() const { return mHeardAt; }

private:
    VirtualIndicator mIndicator;
    Micros mNow = 5 * kSecond;
    std::vector<Micros> mHeardAt;
};

IndicatorOptions With(std::initializer_list<const char*> faults) {
    IndicatorOptions options;
    for (const char* fault : faults) options.faults.push_back(ParseFault(fault));
    options.expected = ImageMemory();
    return options;
}

// ---- The dialogue ----

TEST(BootMonitor, AWholeSessionEndsInTheImageInMemoryAndOneDone) {
    Host host(With({}));
    host.Open(38400);
    EXPECT_EQ(host.Ask(" \r "), "") << "wake-up blanks must not be answered";
    EXPECT_FALSE(host.Indicator().SessionOver());
    host.BeginLoad();
    host.SendImage();
    EXPECT_EQ(host.Hear(kSecond - kSecond / 10 - 1), "") << "verdict before flash was written";
    EXPECT_EQ(host.Hear(10 * kSecond), "DONE\r\n");
    EXPECT_FALSE(host.Indicator().Booted());
    EXPECT_EQ(host.Ask("BOOT"), "");
    EXPECT_TRUE(host.Indicator().Booted());
    EXPECT_TRUE(host.Indicator().SessionOver());
    EXPECT_EQ(host.Indicator().Memory(), ImageMemory());
    EXPECT_TRUE(host.Violations().empty());
}

struct CommandCase {
    const char* name;
    std::vector<const char*> before;
    const char* command;
    const char* answer;
};
void PrintTo(const CommandCase& c, std::ostream* out) {
    *out << c.name;
}
class Command : public testing::TestWithParam<CommandCase> {};

TEST_P(Command, IsAnsweredByItsPlaceInTheDialogue) {
    Host host;
    host.Open(38400);
    for (const char* line : GetParam().before) host.Ask(line);
    EXPECT_EQ(host.Ask(GetParam().command), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    BootMonitor, Command,
    testing::Values(
        CommandCase{"SysloadBeforeTravTaken", {}, "SYSLOAD", "??\r\n"},
        CommandCase{"BaudBeforeTravTaken", {}, "BAUD 115200", "??\r\n"},
        CommandCase{"UnknownCommandAcknowledged", {"TRAV"}, "LOAD", "??\r\n"},
        CommandCase{"CommandWithTailTaken", {}, "TRAV ", "??\r\n"},
        CommandCase{"ImpossibleSpeedTaken", {"TRAV"}, "BAUD 12345", "??\r\n"},
        CommandCase{"SpeedWithTailTaken", {"TRAV"}, "BAUD 38400x", "??\r\n"},
        CommandCase{"SysloadNeedsBaud", {"TRAV"}, "SYSLOAD", "OK\r\n"},
        CommandCase{"RefusedCommandForgetsTrav", {"TRAV", "LOAD"}, "SYSLOAD", "OK\r\n"},
        CommandCase{"BadChecksumTaken", {"TRAV", "SYSLOAD"}, "S2080010000102030400", "??\r\n"},
        CommandCase{"ShortCountTaken", {"TRAV", "SYSLOAD"}, "S20700100001020304DE", "??\r\n"},
        CommandCase{"OddDigitTaken", {"TRAV", "SYSLOAD"}, "S2080010000102030", "??\r\n"},
        CommandCase{"ReservedTypeTaken", {"TRAV", "SYSLOAD"}, "S4030000FC", "??\r\n"},
        CommandCase{"LooseTextTaken", {"TRAV", "SYSLOAD"}, "TRAV", "??\r\n"},
        CommandCase{"DataAfterEndTaken", {"TRAV", "SYSLOAD", "S9030000FC"}, "S1030000FC", "??\r\n"},
        CommandCase{"Record16BitRefused", {"TRAV", "SYSLOAD"}, "S10400100AE1", "OK\r\n"},
        CommandCase{"Record32BitRefused", {"TRAV", "SYSLOAD"}, "S306000010000ADF", "OK\r\n"},
        CommandCase{"BlankLineInImageAnswered", {"TRAV", "SYSLOAD"}, "  ", ""}),
    [](const auto& tested) { return tested.param.name; });

TEST(BootMonitor, AnIncompleteImageIsNotVerified) {
    Host host(With({}));
    host.BeginLoad();
    host.Ask(kImage[1]);
    host.Ask(kImage[4]);
    EXPECT_EQ(host.Hear(10 * kSecond), "VERIFY FAILED\r\n");
    EXPECT_EQ(host.Ask("BOOT"), "??\r\n");
    EXPECT_FALSE(host.Indicator().Booted());
}

TEST(BootMonitor, RepeatedLinesDoNoHarmAndARepeatedEndGivesOneVerdict) {
    Host host(With({}));
    host.BeginLoad();
    for (const std::string& line : kImage) {
        EXPECT_EQ(host.Ask(line), "OK\r\n");
        EXPECT_EQ(host.Ask(line), "OK\r\n");
    }
    EXPECT_EQ(host.Hear(kSecond - kSecond / 5), "DONE\r\n") << "the repeat restarted the writing";
    EXPECT_EQ(host.Hear(60 * kSecond), "");
    EXPECT_EQ(host.Indicator().Verdicts(), 1U);
}

TEST(BootMonitor, ASecondSessionStartsAtTheFirstSpeedAndReplacesTheMemory) {
    Host host;
    host.BeginLoad();
    host.SendImage();
    host.Hear(10 * kSecond);
    host.Ask("BOOT");
    host.Close();
    EXPECT_EQ(host.Indicator().Memory(), ImageMemory()) << "memory lost with the power";
    host.BeginLoad();
    EXPECT_EQ(host.Indicator().Memory().Size(), 0U);
    EXPECT_FALSE(host.Indicator().SessionOver());
    EXPECT_TRUE(host.Violations().empty());
}

TEST(BootMonitor, ACloseInMidImageEndsTheSessionButACloseAfterBaudDoesNot) {
    Host host;
    host.BeginLoad();
    EXPECT_FALSE(host.Indicator().SessionOver());
    host.Ask(kImage[0]);
    host.Close();
    EXPECT_TRUE(host.Indicator().SessionOver());
    EXPECT_FALSE(host.Indicator().Booted());

    host.Open(38400);
    host.Ask("TRAV");
    host.Ask("BAUD 115200");
    host.Close();
    host.Hear(9 * kSecond);
    EXPECT_FALSE(host.Indicator().SessionOver());
    host.Hear(2 * kSecond);
    EXPECT_TRUE(host.Indicator().SessionOver()) << "a host that stays away is waited for for ever";
}

TEST(BootMonitor, AnswersToAClosedPortAreLost) {
    Host host;
    host.Open(38400);
    host.Send("TRAV\rBAUD 115200\r");
    host.Close();
    host.Open(115200);
    EXPECT_EQ(host.Hear(kSecond), "");
}

// ---- What the host did wrong ----

TEST(Violation, WrongSpeedIsNotedOnceAndTheBytesAreNotActedOn) {
    Host host;
    host.Open(9600);
    EXPECT_EQ(host.Ask("TRAV"), "");
    ASSERT_EQ(host.Violations().size(), 1U);
    EXPECT_NE(host.Violations()[0].find("9600"), std::string::npos);
    EXPECT_NE(host.Violations()[0].find("38400"), std::string::npos);

    host.Open(38400);
    host.Ask("TRAV");
    host.Ask("BAUD 115200");
    EXPECT_EQ(host.Ask("SYSLOAD"), "") << "heard at the speed before BAUD";
    EXPECT_EQ(host.Violations().size(), 2U);
    host.Open(115200);
    EXPECT_EQ(host.Ask("SYSLOAD"), "OK\r\n");
    EXPECT_EQ(host.Violations().size(), 2U);
}

TEST(Violation, LineFeedIsNotedOnceASession) {
    Host host;
    host.Open(38400);
    EXPECT_EQ(host.Ask("TRAV\r\n"), "OK\r\n");
    host.Send("\n");
    EXPECT_EQ(host.Violations().size(), 1U);
}

struct AfterDoneCase {
    const char* name;
    const char* bytes;
    std::size_t violations;
    bool booted;
};
void PrintTo(const AfterDoneCase& c, std::ostream* out) {
    *out << c.name;
}
class AfterDone : public testing::TestWithParam<AfterDoneCase> {};

TEST_P(AfterDone, OnlyBootEndsWell) {
    Host host;
    host.BeginLoad();
    host.SendImage();
    ASSERT_EQ(host.Hear(10 * kSecond), "DONE\r\n");
    host.Send(GetParam().bytes);
    host.Close();
    EXPECT_EQ(host.Violations().size(), GetParam().violations);
    EXPECT_EQ(host.Indicator().Booted(), GetParam().booted);
    EXPECT_TRUE(host.Indicator().SessionOver());
}

INSTANTIATE_TEST_SUITE_P(
    BootMonitor, AfterDone,
    testing::Values(AfterDoneCase{"BootMissed", "BOOT\r", 0, true},
                    AfterDoneCase{"OtherCommandForgiven", "TRAV\r", 1, false},
                    AfterDoneCase{"UnfinishedBootTaken", "BOOT", 1, false},
                    AfterDoneCase{"LineFeedBehindBootForgiven", "BOOT\r\n", 1, false},
                    AfterDoneCase{"BlankBeforeBootForgiven", "\rBOOT\r", 1, true},
                    AfterDoneCase{"SilentCloseTaken", "", 0, false}),
    [](const auto& tested) { return tested.param.name; });

// ---- Faults at a line ----

constexpr const char* kNoisyOk = "~\x15#\xF1 \x80|OK\r\n";

struct LineFaultCase {
    const char* name;
    const char* fault;  // at line 1
    const char* first;  // answer to the line's first arrival
    const char* second;
    bool taken;  // by the first arrival
};
void PrintTo(const LineFaultCase& c, std::ostream* out) {
    *out << c.name;
}
class LineFault : public testing::TestWithParam<LineFaultCase> {};

TEST_P(LineFault, ShowsOnItsLineOnlyAndOnlySoOften) {
    Host host(With({GetParam().fault}));
    host.BeginLoad();
    ASSERT_EQ(host.Ask(kImage[0]), "OK\r\n");
    EXPECT_EQ(host.Ask(kImage[1], kSecond), GetParam().first);
    EXPECT_EQ(host.Indicator().Memory().Size(), GetParam().taken ? 4U : 0U);
    EXPECT_EQ(host.Ask(kImage[1], kSecond), GetParam().second);
    host.Ask(kImage[1], kSecond);
    for (std::size_t i = 2; i < kImage.size(); ++i) {
        EXPECT_EQ(host.Ask(kImage[i]), "OK\r\n");
    }
    EXPECT_EQ(host.Hear(10 * kSecond), "DONE\r\n") << "damage was left in memory";
}

INSTANTIATE_TEST_SUITE_P(
    BootMonitor, LineFault,
    testing::Values(
        LineFaultCase{"RefusedLineTaken", "nak@1", "??\r\n", "OK\r\n", false},
        LineFaultCase{"TimesIgnored", "nak@1x2", "??\r\n", "??\r\n", false},
        LineFaultCase{"SilentLineTaken", "silent@1", "", "OK\r\n", false},
        LineFaultCase{"LostByteUnnoticed", "drop@1", "??\r\n", "OK\r\n", false},
        LineFaultCase{"RepeatOfDamagedLineCountedAnew", "drop@1x2", "??\r\n", "??\r\n", false},
        LineFaultCase{"ChangedByteUnnoticed", "garble@1", "??\r\n", "OK\r\n", false},
        LineFaultCase{"NoiseMissing", "noise@1", kNoisyOk, "OK\r\n", true},
        LineFaultCase{"SplitAnswerCut", "split@1", "OK\r\n", "OK\r\n", true},
        LineFaultCase{"DoneInsteadNotTaken", "done@1", "DONE\r\n", "OK\r\n", true},
        LineFaultCase{"VerifyInsteadNotTaken", "verify@1", "VERIFY FAILED\r\n", "OK\r\n", true}),
    [](const auto& tested) { return tested.param.name; });

TEST(LineFault, ALateAcknowledgementOfTheEndIsNotOvertakenByTheVerdict) {
    Host host(With({"late=1500@4"}));
    host.BeginLoad();
    for (std::size_t i = 0; i + 1 < kImage.size(); ++i) host.Ask(kImage[i]);
    host.Send(kImage.back() + "\r");
    EXPECT_EQ(host.Hear(1'500'000 - 1), "");
    EXPECT_EQ(host.Hear(1), "OK\r\n");
    EXPECT_EQ(host.Hear(kSecond - 1), "");
    EXPECT_EQ(host.Hear(1), "DONE\r\n");
}

TEST(LineFault, SplitPiecesComeApart) {
    Host host(With({"split@0", "split-verdict"}));
    host.BeginLoad();
    const std::size_t before = host.HeardAt().size();
    const Micros start = host.Now();
    host.Ask(kImage[0], kSecond);
    std::vector<Micros> at(host.HeardAt().begin() + static_cast<std::ptrdiff_t>(before),
                           host.HeardAt().end());
    EXPECT_EQ(at, (std::vector<Micros>{start + 30'000, start + 60'000, start + 90'000}));

    for (std::size_t i = 1; i < kImage.size(); ++i) host.Ask(kImage[i]);
    const Micros verdict = host.Now() - kSecond / 10 + kSecond;
    EXPECT_EQ(host.Hear(verdict - host.Now()), "DON");
    EXPECT_EQ(host.Hear(99'999), "");
    EXPECT_EQ(host.Hear(1), "E\r\n");
}

TEST(LineFault, HangupEndsTheSessionForGood) {
    Host host(With({"hangup@2"}));
    host.BeginLoad();
    host.Ask(kImage[0]);
    host.Ask(kImage[1]);
    EXPECT_FALSE(host.Indicator().HungUp());
    EXPECT_EQ(host.Ask(kImage[2]), "");
    EXPECT_TRUE(host.Indicator().HungUp());
    EXPECT_TRUE(host.Indicator().SessionOver());
    EXPECT_EQ(host.Ask("TRAV"), "");
    EXPECT_FALSE(host.Indicator().NextDue());
}

// A host that gives up after four sends and starts anew must find the fault gone.
TEST(LineFault, ASessionAfterAFailedOneCanSucceed) {
    Host host(With({"nak@2x4"}));
    host.BeginLoad();
    host.Ask(kImage[0]);
    host.Ask(kImage[1]);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(host.Ask(kImage[2]), "??\r\n");
    host.Close();
    host.BeginLoad();
    host.SendImage();
}

// ---- Faults of a phase ----

struct PhaseFaultCase {
    const char* name;
    const char* fault;
    const char* trav;
    const char* baud;
    const char* sysload;
    const char* verdict;
};
void PrintTo(const PhaseFaultCase& c, std::ostream* out) {
    *out << c.name;
}
class PhaseFault : public testing::TestWithParam<PhaseFaultCase> {};

TEST_P(PhaseFault, ShowsInItsPhaseOnly) {
    const PhaseFaultCase& expected = GetParam();
    Host host(With({expected.fault}));
    host.Open(38400);
    EXPECT_EQ(host.Ask("TRAV"), expected.trav);
    EXPECT_EQ(host.Ask("BAUD 38400"), expected.baud);
    EXPECT_EQ(host.Ask("SYSLOAD"), expected.sysload);
    for (const std::string& line : kImage) host.Ask(line);
    EXPECT_EQ(host.Hear(60 * kSecond), expected.verdict);
}

INSTANTIATE_TEST_SUITE_P(
    BootMonitor, PhaseFault,
    testing::Values(
        PhaseFaultCase{"TravTakenAllTheSame", "no-trav", "??\r\n", "??\r\n", "??\r\n", ""},
        PhaseFaultCase{"TravAnswered", "no-trav=silent", "", "??\r\n", "??\r\n", ""},
        PhaseFaultCase{"BaudTaken", "no-baud", "OK\r\n", "??\r\n", "OK\r\n", "DONE\r\n"},
        PhaseFaultCase{"BaudAnswered", "no-baud=silent", "OK\r\n", "", "OK\r\n", "DONE\r\n"},
        PhaseFaultCase{"SysloadTaken", "no-sysload", "OK\r\n", "OK\r\n", "??\r\n", ""},
        PhaseFaultCase{"SysloadAnswered", "no-sysload=silent", "OK\r\n", "OK\r\n", "", ""},
        PhaseFaultCase{"GoodVerdict", "verify-failed", "OK\r\n", "OK\r\n", "OK\r\n",
                       "VERIFY FAILED\r\n"},
        PhaseFaultCase{"AnyVerdict", "no-verdict", "OK\r\n", "OK\r\n", "OK\r\n", ""},
        PhaseFaultCase{"VerdictCut", "split-verdict", "OK\r\n", "OK\r\n", "OK\r\n", "DONE\r\n"}),
    [](const auto& tested) { return tested.param.name; });

// ---- Pacing ----

constexpr Nanos Characters(std::int64_t count, std::int64_t bitsPerSecond) {
    return (count * 11 * Nanos{1'000'000'000} + bitsPerSecond - 1) / bitsPerSecond;
}
constexpr Micros CharactersInMicros(std::int64_t count, std::int64_t bitsPerSecond) {
    return (Characters(count, bitsPerSecond) + 999) / 1000;
}

TEST(Pacing, ALongRunDoesNotDrift) {
    constexpr std::int64_t count = 153'000;  // a whole image
    UartPacing pacing;
    Nanos end = 0;
    for (std::int64_t i = 0; i < count; ++i) end = pacing.Next(7, 11, 115200);
    EXPECT_EQ(end, 7 + Characters(count, 115200));
}

TEST(Pacing, IdleTimeEarnsNoCreditAndASpeedChangeWaitsForTheCharacterBefore) {
    UartPacing pacing;
    EXPECT_EQ(pacing.Next(0, 10, 10'000), 1'000'000);
    EXPECT_EQ(pacing.Next(5'000'000, 10, 10'000), 6'000'000);
    EXPECT_EQ(pacing.Next(5'000'000, 10, 10'000), 7'000'000);
    EXPECT_EQ(pacing.Next(6'500'000, 10, 100'000), 7'100'000);
}

TEST(Pacing, TheAnswerComesWhenLineAndThinkingAndItsOwnBytesHavePassed) {
    IndicatorOptions options = With({});
    options.paced = true;
    options.think = 700;
    Host host(options);
    host.BeginLoad();
    host.Hear(kSecond);
    const std::string line = kImage[1] + "\r";
    const auto length = static_cast<std::int64_t>(line.size());
    const std::size_t before = host.HeardAt().size();
    const Micros start = host.Now();
    // In two parts, the second while the first is on the wire: they pass without a pause.
    host.Send(line.substr(0, 10));
    host.Hear(300);
    host.Send(line.substr(10));
    EXPECT_EQ(host.Hear(kSecond), "OK\r\n");
    ASSERT_EQ(host.HeardAt().size(), before + 4);
    for (std::int64_t i = 1; i <= 4; ++i) {
        const Micros due =
            start + (Characters(length, 115200) + 700'000 + Characters(i, 115200) + 999) / 1000;
        EXPECT_EQ(host.HeardAt()[before + static_cast<std::size_t>(i) - 1], due);
    }
}

TEST(Pacing, BaudIsAcknowledgedAtTheSpeedBeforeIt) {
    IndicatorOptions options;
    options.paced = true;
    Host host(options);
    host.Open(38400);
    host.Ask("TRAV");
    const Micros start = host.Now();
    host.Ask("BAUD 115200");
    EXPECT_EQ(host.HeardAt().back(), start + CharactersInMicros(12 + 4, 38400));
}

TEST(Pacing, BootStillOnTheWireWhenTheHostClosesArrives) {
    IndicatorOptions options = With({});
    options.paced = true;
    Host host(options);
    host.BeginLoad();
    host.SendImage();
    ASSERT_EQ(host.Hear(10 * kSecond), "DONE\r\n");
    host.Send("BOOT\r");
    host.Close();
    EXPECT_FALSE(host.Indicator().Booted()) << "arrived before its time";
    host.Hear(kSecond);
    EXPECT_TRUE(host.Indicator().Booted());
}

// ---- Spellings ----

TEST(FaultSpelling, IsRead) {
    EXPECT_EQ(ParseFault("nak@7"), (Fault{FaultKind::Nak, 7, 1, 0, false}));
    EXPECT_EQ(ParseFault("garble@0x4"), (Fault{FaultKind::Garble, 0, 4, 0, false}));
    EXPECT_EQ(ParseFault("late=1500@12x2"), (Fault{FaultKind::Late, 12, 2, 1500, false}));
    EXPECT_EQ(ParseFault("no-baud=silent"), (Fault{FaultKind::NoBaud, 0, 1, 0, true}));
}

class BadFault : public testing::TestWithParam<const char*> {};

TEST_P(BadFault, IsRejectedByName) {
    try {
        ParseFault(GetParam());
        FAIL() << "taken: " << GetParam();
    } catch (const std::invalid_argument& error) {
        EXPECT_NE(std::string(error.what()).find("\"" + std::string(GetParam()) + "\""),
                  std::string::npos)
            << error.what();
    }
}

INSTANTIATE_TEST_SUITE_P(BootMonitor, BadFault,
                         testing::Values("", "nak", "nak@", "nak@-1", "nak@1x", "nak@1x0",
                                         "nak@1x2x3", "nak@99999999999999999999", "nak=5@1",
                                         "late@3", "late=@3", "late=0@3", "late=1s@3", "nap@3",
                                         "no-trav@3", "no-trav=loud", "no-verdict=silent", "@1"));

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
