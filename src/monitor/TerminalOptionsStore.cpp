#include "monitor/TerminalOptionsStore.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/text/Text.hpp"

namespace vantor {
namespace {

using Words = std::span<const std::string_view>;  // of the values of an enumeration, in their order

constexpr std::string_view kSwitch[] = {"False", "True"};
constexpr std::string_view kViews[] = {"Text", "ControlCharacters", "Hex"};
constexpr std::string_view kNotations[] = {"Pictures", "Numbers"};
constexpr std::string_view kTimeStamps[] = {"Off", "TimeOfDay", "SincePrevious"};
constexpr std::string_view kEnterKeys[] = {"CR", "LF", "CRLF"};
constexpr std::string_view kBackspaceKeys[] = {"BS", "DEL"};
constexpr std::string_view kPaces[] = {"None", "Line"};

/// Calls `visit(name, value, words)` for each option of `options`.
template <typename Options, typename Visit>
void ForEachOption(Options& options, Visit&& visit) {
    visit("View", options.view, Words(kViews));
    visit("ControlNotation", options.controlNotation, Words(kNotations));
    visit("TimeStamps", options.timeStamps, Words(kTimeStamps));
    visit("CaptureTimeStamps", options.captureTimeStamps, Words(kSwitch));
    visit("DarkScheme", options.darkScheme, Words(kSwitch));
    visit("FontPoints", options.fontPoints, Words());
    visit("LocalEcho", options.localEcho, Words(kSwitch));
    visit("EnterKey", options.enterKey, Words(kEnterKeys));
    visit("BackspaceKey", options.backspaceKey, Words(kBackspaceKeys));
    visit("PastePace", options.pastePace, Words(kPaces));
    visit("AskBeforeLongPaste", options.askBeforeLongPaste, Words(kSwitch));
    visit("BreakKey", options.breakKey, Words(kSwitch));
    visit("ReturnFeeds", options.returnFeeds, Words(kSwitch));
    visit("AnswersQueries", options.answersQueries, Words(kSwitch));
    visit("Reopens", options.reopens, Words(kSwitch));
}

template <typename Value>
std::string TextOf(Value value, Words words) {
    return std::string(words[static_cast<std::size_t>(value)]);
}
std::string TextOf(int points, Words) {
    return std::to_string(points);
}

using StoredOptions = std::vector<std::pair<std::string, std::string>>;  // name and text

StoredOptions TextsOf(const TerminalOptions& options) {
    StoredOptions texts;
    ForEachOption(options, [&texts](const char* name, const auto& value, Words words) {
        texts.emplace_back(name, TextOf(value, words));
    });
    return texts;
}

template <typename Value>
void Take(std::string_view text, Words words, Value& value) {
    for (std::size_t i = 0; i < words.size(); ++i)
        if (SameText(words[i], text)) value = static_cast<Value>(i);
}
void Take(std::string_view text, Words, int& points) {
    const std::optional<std::int64_t> number = ParseInteger(text);
    if (number && *number >= kSmallestPoints && *number <= kLargestPoints)
        points = static_cast<int>(*number);
}

}  // namespace

TerminalOptionsStore::TerminalOptionsStore(Registry& registry, const CodePage& codePage)
    : StoredTexts(registry, codePage) {
    SubKey = "Terminal";
}

TerminalOptions TerminalOptionsStore::Load() {
    TerminalOptions options;
    ForEachOption(options, [this](const char* name, auto& value, Words words) {
        Take(RegistryGetKeyValue(RootKey, KeyPath(), name), words, value);
    });
    return options;
}

void TerminalOptionsStore::Save(const TerminalOptions& before, const TerminalOptions& now) {
    const StoredOptions old = TextsOf(before);
    const StoredOptions texts = TextsOf(now);
    for (std::size_t i = 0; i < texts.size(); ++i)
        if (texts[i] != old[i])
            RegistrySetKeyValue(RootKey, KeyPath(), texts[i].first, texts[i].second);
}

}  // namespace vantor
