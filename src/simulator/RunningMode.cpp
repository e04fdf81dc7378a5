#include "simulator/RunningMode.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

#include "support/text/Text.hpp"

namespace vantor {
namespace {

constexpr int kLoadHundredths = 125'40;
constexpr std::size_t kLongestLine = 80;
constexpr std::string_view kLineEnd = "\r\n";

constexpr std::string_view kHelp =
    "GROSS  NET  TARE?      a weight\r\n"
    "ZERO  TARE  CLEAR      an action\r\n"
    "UNITS  DECIMALS  ID    a setting; with =VALUE it is changed\r\n"
    "VERSION\r\n";

}  // namespace

std::string RunningMode::Receive(std::string_view bytes) {
    std::string out;
    for (const char character : bytes) out += TakeCharacter(character);
    return out;
}

std::string RunningMode::TakeCharacter(char character) {
    if (character == '\b' || character == '\x7F') {
        if (mLine.empty()) return {};
        mLine.pop_back();
        return "\b \b";
    }
    if (character == '\r') {
        std::string answer = Answer(TrimBlanks(mLine));
        mLine.clear();
        return std::string(kLineEnd) + answer;
    }
    const bool printable = static_cast<unsigned char>(character) >= ' ';
    if (!printable || mLine.size() == kLongestLine) return {};
    mLine += character;
    return {character};
}

std::string RunningMode::Answer(std::string_view line) {
    const std::string command = UpperCase(line);
    if (command.empty()) return {};
    const std::size_t equals = command.find('=');
    if (equals != std::string::npos)
        return Set(TrimBlanks(std::string_view(command).substr(0, equals)),
                   std::string(TrimBlanks(line.substr(equals + 1)))) +
               std::string(kLineEnd);
    if (command == "HELP") return std::string(kHelp);
    std::string answer = "??";
    if (command == "GROSS" || command == "NET" || command == "TARE?") answer = Weight(command);
    if (command == "VERSION") answer = "M40 V2.05";
    if (command == "UNITS") answer = mUnits;
    if (command == "DECIMALS") answer = mDecimals;
    if (command == "ID") answer = mId;
    if (command == "ZERO" || command == "TARE" || command == "CLEAR") {
        mTareHundredths = command == "TARE" ? kLoadHundredths : 0;
        answer = "OK";
    }
    return answer + std::string(kLineEnd);
}

std::string RunningMode::Set(std::string_view name, const std::string& value) {
    struct Setting {
        std::string_view name;
        std::string RunningMode::*member;
        std::string_view allowed;  // values delimited by blanks; empty for any
    };
    constexpr std::array kSettings = {
        Setting{"UNITS", &RunningMode::mUnits, " kg g lb "},
        Setting{"DECIMALS", &RunningMode::mDecimals, " 0 1 2 "},
        Setting{"ID", &RunningMode::mId, ""},
    };
    const auto* const setting = std::ranges::find(kSettings, name, &Setting::name);
    if (setting == kSettings.end() || value.empty()) return "??";
    const bool allowed = setting->allowed.empty() ||
                         setting->allowed.find(" " + value + " ") != std::string_view::npos;
    if (!allowed) return "??";
    this->*setting->member = value;
    return "OK";
}

std::string RunningMode::Weight(std::string_view kind) const {
    int hundredths = kLoadHundredths;
    if (kind == "NET") hundredths -= mTareHundredths;
    if (kind == "TARE?") hundredths = mTareHundredths;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%10.*f %s %c", mDecimals.front() - '0',
                  hundredths / 100.0, mUnits.c_str(), kind.front());
    return text.data();
}

}  // namespace vantor
