// The virtual indicator on virtual time: its replies, its pacing, its faults, and the protocol
// violations of a host that it detects. Other tests rely on it, so it must be correct.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/SerialRecord.hpp"
#include "simulator/VirtualIndicator.hpp"
#include "support/LineSettings.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

constexpr Micros kMilli = 1000;
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
    /// `trait` is "-", "think=" with microseconds, or a fault.
    explicit Host(const std::string& trait) : indicator(OptionsFor(trait)) {}

    void Send(std::string_view bytes) {
        indicator.Receive(bytes, now);
        sentAt = now;
        heardAt.clear();
    }

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

    /// Executes the words of a script and returns what is received in the 100 ms after each line,
    /// without line ends; "-" for nothing. "@9600,N,8,2" opens the port, without a frame so, and
    /// "@" closes it;
    /// "#1" is a line of the image, "~500" listens for that many milliseconds, "!TEXT" only sends;
    /// "state" returns what the indicator knows, "times" the microseconds from the last send to
    /// each byte received; any other word is a line.
    std::string Talk(const Words& script) {
        std::string heard;
        for (const std::string& word : script) {
            const auto number = static_cast<std::uint32_t>(std::atoi(word.c_str() + 1));
            if (word == "@") {
                indicator.HostClosed(now);
            } else if (word[0] == '@') {
                const char* const frame = word.find(',') == std::string::npos ? ",N,8,2" : "";
                indicator.HostLine(ParseLineSettings(word.substr(1) + frame), now);
            } else if (word[0] == '!') {
                Send(word.substr(1));
            } else if (word == "state") {
                heard += State() + " ";
            } else if (word == "times") {
                for (const Micros at : heardAt) heard += Row(at - sentAt, "");
            } else {
                if (word[0] != '~') Send((word[0] == '#' ? kImage.at(number) : word) + "\r");
                const std::string answer = Hear((word[0] == '~' ? number : 100) * kMilli);
                heard += answer.empty() ? "- " : answer.substr(0, answer.find('\r')) + " ";
            }
        }
        return heard.substr(0, heard.size() - 1);
    }

    VirtualIndicator indicator;
    Micros now = 5'000 * kMilli;
    Micros sentAt = 0;
    std::vector<Micros> heardAt;

private:
    std::string State() const {
        std::string state = indicator.HungUp() ? "[hung up, " : "[";
        state += indicator.Booted() ? "booted, " : "";
        state += indicator.SessionOver() ? "over, " : "";
        state += indicator.Memory() == ImageMemory() ? "whole" : Row(indicator.Memory().Size());
        for (const std::string& violation : indicator.Violations()) state += "; " + violation;
        return state + "]";
    }

    static FlashMemory ImageMemory() {
        std::string text;
        for (const std::string& line : kImage) text += line + "\n";
        return FlashMemory::FromRecords(text);
    }

    static IndicatorOptions OptionsFor(const std::string& trait) {
        IndicatorOptions options;
        options.expected = ImageMemory();
        options.paced = trait.starts_with("think=");
        if (options.paced)
            options.think = std::stoll(trait.substr(6));
        else if (trait != "-")
            options.faults.push_back(ParseFault(trait));
        return options;
    }
};

TEST(BootMonitor, AnswersAsTheTableSays) {
    const Words load = WordsOf("@38400 TRAV \"BAUD 115200\" @ @115200 SYSLOAD");
    ExpectTable("boot-monitor", [&load](const Words& words) {
        Host host(words.at(0));
        Words script(words.begin() + 1, words.end());
        if (script.at(0) == "load") {
            EXPECT_EQ(host.Talk(load), "OK OK OK");
            script.erase(script.begin());
        }
        std::string heard = host.Talk(script);
        EXPECT_LE(host.indicator.Verdicts(), 1U);
        return heard;
    });
}

}  // namespace
}  // namespace vantor
