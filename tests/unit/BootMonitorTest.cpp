// The virtual indicator on virtual time: its replies, its pacing, its faults, and the protocol
// violations of a host that it detects. Other tests rely on it, so it must be correct.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/SerialRecord.hpp"
#include "simulator/VirtualIndicator.hpp"

namespace vantor {
namespace {

constexpr Micros kMilli = 1000;
constexpr Micros kSecond = 1000 * kMilli;
const std::vector<std::string> kImage{
    SerialRecord{'0', 0, {'M', '4', '0'}}.Format(),
    SerialRecord{'2', 0x1000, {0x01, 0x02, 0x03, 0x04}}.Format(),
    SerialRecord{'2', 0x1004, {0x05, 0x06, 0x07, 0x08}}.Format(),
    SerialRecord{'5', 2, {}}.Format(),
    SerialRecord{'8', 0x1000, {}}.Format(),
};

/// An indicator that expects the image, and a host on virtual time that receives each byte
/// exactly when it is sent.
class Host {
public:
    explicit Host(const std::string& fault = {}, Micros pacedThink = 0)
        : indicator(OptionsFor(fault, pacedThink)) {}

    void Open(std::uint32_t speed) { indicator.HostLine({speed, Parity::None, 8, 2}, now); }
    void Close() { indicator.HostClosed(now); }
    void Send(std::string_view bytes) { indicator.Receive(bytes, now); }

    /// Bytes received in the next `time`.
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

    /// Executes the words of `script` and returns what is received in the 100 ms after each line,
    /// without line ends; "-" for nothing. "@9600" opens the port at that speed and "@" closes it;
    /// "#1" is a line of the image; "~500" listens for that many milliseconds; any other word
    /// is a line, "_" a space in it.
    std::string Talk(const std::string& script) {
        std::istringstream words(script);
        std::string heard;
        for (std::string word; words >> word;) {
            const auto number = static_cast<std::uint32_t>(std::atoi(word.c_str() + 1));
            if (word == "@") {
                Close();
            } else if (word[0] == '@') {
                Open(number);
            } else {
                std::ranges::replace(word, '_', ' ');
                if (word[0] == '#') word = kImage.at(number);
                if (word[0] != '~') Send(word + "\r");
                const std::string answer = Hear((word[0] == '~' ? number : 100) * kMilli);
                heard += answer.empty() ? "- " : answer.substr(0, answer.find('\r')) + " ";
            }
        }
        return heard.substr(0, heard.size() - 1);
    }
    /// Runs the protocol up to the point where image lines are expected.
    void BeginLoad() { ASSERT_EQ(Talk("@38400 TRAV BAUD_115200 @ @115200 SYSLOAD"), "OK OK OK"); }
    void Load() {
        BeginLoad();
        ASSERT_EQ(Talk("#0 #1 #2 #3 #4"), "OK OK OK OK OK");
    }

    static FlashMemory ImageMemory() {
        std::string text;
        for (const std::string& line : kImage) text += line + "\n";
        return FlashMemory::FromRecords(text);
    }

    VirtualIndicator indicator;
    Micros now = 5 * kSecond;
    std::vector<Micros> heardAt;

private:
    static IndicatorOptions OptionsFor(const std::string& fault, Micros pacedThink) {
        IndicatorOptions options;
        options.expected = ImageMemory();
        options.paced = pacedThink != 0;
        options.think = pacedThink;
        if (!fault.empty()) options.faults.push_back(ParseFault(fault));
        return options;
    }
};

TEST(BootMonitor, AWholeSessionEndsInTheImageInMemoryAndTheNextStartsAnew) {
    Host host;
    EXPECT_EQ(host.Talk("@38400 _ "), "-") << "wake-up blanks must not be answered";
    EXPECT_FALSE(host.indicator.SessionOver());
    host.Load();
    EXPECT_EQ(host.Hear(900 * kMilli - 1), "") << "verdict before flash was written";
    EXPECT_EQ(host.Hear(1), "DONE\r\n");
    EXPECT_FALSE(host.indicator.Booted());
    EXPECT_EQ(host.Talk("BOOT @"), "-");
    EXPECT_TRUE(host.indicator.Booted() && host.indicator.SessionOver());
    EXPECT_EQ(host.indicator.Memory(), Host::ImageMemory()) << "memory lost with the power";
    host.BeginLoad();
    EXPECT_EQ(host.indicator.Memory().Size(), 0U);
    EXPECT_FALSE(host.indicator.SessionOver());
    EXPECT_TRUE(host.indicator.Violations().empty());
}

struct Dialogue {
    const char* fault;
    const char* script;
    const char* heard;
};

TEST(BootMonitor, AnImageLineIsTakenOnceAndRefusedWhenItIsDamaged) {
    for (const auto& [fault, script, heard] : {
             Dialogue{"", "S2080010000102030400 S20700100001020304DE S2080010000102030",
                      "?? ?? ??"},
             Dialogue{"", "S4030000FC TRAV __", "?? ?? -"},
             Dialogue{"", "S10400100AE1 S306000010000ADF S9030000FC S1030000FC", "OK OK OK ??"},
             Dialogue{"", "#1 #4 ~9000 BOOT", "OK OK VERIFY FAILED ??"},
             Dialogue{"", "#0 #1 #1 #2 #2 #3 #4 #4 ~800 ~9000", "OK OK OK OK OK OK OK OK DONE -"},
             Dialogue{"nak@1", "#0 #1 #1 #1 #2 #3 #4 ~9000", "OK ?? OK OK OK OK OK DONE"},
             Dialogue{"nak@1", "#0 #1 #2 #3 #4 ~9000", "OK ?? OK OK OK VERIFY FAILED"},
             Dialogue{"drop@1x2", "#0 #1 #1 #1 #2 #3 #4 ~9000", "OK ?? ?? OK OK OK OK DONE"},
             Dialogue{"garble@1", "#0 #1 #1 #2 #3 #4 ~9000", "OK ?? OK OK OK OK DONE"},
             Dialogue{"noise@1", "#0 #1 #2 #3 #4 ~9000", "OK ~\x15#\xF1 \x80|OK OK OK OK DONE"},
             Dialogue{"verify@1", "#0 #1 #2 #3 #4 ~9000", "OK VERIFY FAILED OK OK OK DONE"},
             Dialogue{"late=1500@4", "#0 #1 #2 #3 #4 ~1399 ~1 ~999 ~1",
                      "OK OK OK OK - - OK - DONE"},
             Dialogue{"hangup@2", "#0 #1 #2 TRAV", "OK OK - -"},
             Dialogue{"split-verdict", "#0 #1 #2 #3 #4 ~900 ~99 ~1", "OK OK OK OK OK DON - E"},
         }) {
        Host host(fault);
        host.BeginLoad();
        EXPECT_EQ(host.Talk(script), heard) << fault << " " << script;
        EXPECT_EQ(host.indicator.HungUp(), std::string_view(fault) == "hangup@2");
        EXPECT_LE(host.indicator.Verdicts(), 1U);
        EXPECT_FALSE(host.indicator.Booted());
    }
}

TEST(BootMonitor, ACloseEndsTheSessionUnlessTheHostIsChangingItsSpeed) {
    Host host;
    host.BeginLoad();
    host.Talk("#0");
    EXPECT_FALSE(host.indicator.SessionOver());
    host.Close();
    EXPECT_TRUE(host.indicator.SessionOver());
    host.Open(38400);
    host.Send("TRAV\rBAUD 115200\r");
    EXPECT_EQ(host.Talk("@ @115200 ~1000"), "-") << "answers to a closed port are lost";
    host.Talk("@ ~9000");
    EXPECT_FALSE(host.indicator.SessionOver());
    host.Talk("~2000");
    EXPECT_TRUE(host.indicator.SessionOver()) << "a host that stays away is waited for for ever";
}

TEST(Violation, AWrongSpeedOrALineFeedIsNotedOnceASession) {
    Host host;
    const std::vector<std::string>& violations = host.indicator.Violations();
    EXPECT_EQ(host.Talk("@9600 TRAV"), "-");
    ASSERT_EQ(violations.size(), 1U);
    EXPECT_NE(violations[0].find("9600"), std::string::npos) << violations[0];
    EXPECT_NE(violations[0].find("38400"), std::string::npos) << violations[0];
    EXPECT_EQ(host.Talk("@38400 TRAV BAUD_115200 SYSLOAD"), "OK OK -");
    EXPECT_EQ(violations.size(), 2U) << "not heard at the speed before BAUD";
    EXPECT_EQ(host.Talk("@115200 SYSLOAD"), "OK");
    host.Send("\n\n");
    EXPECT_EQ(violations.size(), 3U);
}

TEST(Violation, AFrameThatChangesWithTheSpeedIsNoted) {
    using enum Parity;
    for (const LineSettings& line :
         {LineSettings{115200, Even, 8, 2}, LineSettings{115200, None, 7, 2},
          LineSettings{115200, None, 8, 1}}) {
        Host host;
        host.Talk("@38400 TRAV BAUD_115200 @");
        host.indicator.HostLine(line, host.now);
        EXPECT_EQ(host.indicator.Violations().size(), 1U);
    }
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
        host.Load();
        ASSERT_EQ(host.Talk("~9000"), "DONE");
        host.Send(c.bytes);
        host.Close();
        EXPECT_EQ(host.indicator.Violations().size(), c.violations) << c.bytes;
        EXPECT_EQ(host.indicator.Booted(), c.booted) << c.bytes;
        EXPECT_TRUE(host.indicator.SessionOver()) << c.bytes;
    }
}

TEST(FaultSpelling, IsReadOrRejectedByName) {
    EXPECT_EQ(ParseFault("nak@7"), (Fault{FaultKind::Nak, 7, 1, 0, false}));
    EXPECT_EQ(ParseFault("garble@0x4"), (Fault{FaultKind::Garble, 0, 4, 0, false}));
    EXPECT_EQ(ParseFault("late=1500@12x2"), (Fault{FaultKind::Late, 12, 2, 1500, false}));
    EXPECT_EQ(ParseFault("no-baud=silent"), (Fault{FaultKind::NoBaud, 0, 1, 0, true}));
    for (const std::string bad :
         {"", "nak", "nak@", "nak@-1", "nak@1x0", "nak@99999999999999999999", "nak=5@1", "late@3",
          "late=0@3", "late=1s@3", "nap@3", "no-trav@3", "no-trav=loud", "no-verdict=silent"}) {
        try {
            ParseFault(bad);
            ADD_FAILURE() << "taken: " << bad;
        } catch (const std::invalid_argument& error) {
            EXPECT_NE(std::string_view(error.what()).find('"' + bad + '"'), std::string::npos);
        }
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
    Host host("", 700);
    host.Talk("@38400 TRAV");
    Micros start = host.now;
    host.Talk("BAUD_115200");
    EXPECT_EQ(host.heardAt.back(), start + (Characters(12 + 4, 38400) + 700'999) / 1000)
        << "at the speed before it";
    host.Talk("@115200 SYSLOAD");
    host.heardAt.clear();
    start = host.now;
    const std::string line = kImage[1] + "\r";
    // In two parts, the second during the transmission of the first: there is no gap between them.
    host.Send(line.substr(0, 10));
    host.Hear(300);
    host.Send(line.substr(10));
    EXPECT_EQ(host.Hear(kSecond), "OK\r\n");
    std::vector<Micros> expected;
    const Nanos heard = Characters(static_cast<std::int64_t>(line.size()), 115200);
    for (int i = 1; i <= 4; ++i)
        expected.push_back(start + (heard + Characters(i, 115200) + 700'999) / 1000);
    EXPECT_EQ(host.heardAt, expected);
}

}  // namespace
}  // namespace vantor
