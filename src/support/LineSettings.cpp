#include "support/LineSettings.hpp"

#include <algorithm>
#include <charconv>

#include "support/errors/RuntimeError.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

constexpr std::string_view kParityLetters = "NOE";  // in the order of Parity

/// Takes the field before the next comma, or all of `text`.
std::string_view TakeField(std::string_view& text) {
    const std::string_view field = text.substr(0, text.find(','));
    text.remove_prefix(std::min(text.size(), field.size() + 1));
    return field;
}

std::optional<std::uint32_t> WholeNumber(std::string_view digits) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
    return number;
}

}  // namespace

char LetterOf(Parity parity) {
    return kParityLetters[static_cast<std::size_t>(parity)];
}

std::optional<Parity> ParityOf(std::string_view letter) {
    const std::size_t at = kParityLetters.find(UpperCase(letter));
    if (letter.size() != 1 || at == std::string_view::npos) return std::nullopt;
    return static_cast<Parity>(at);
}

LineSettings ParseLineSettings(std::string_view text) {
    const bool fourFields = std::ranges::count(text, ',') == 3;
    const auto speed = WholeNumber(TakeField(text));
    const auto parity = ParityOf(TakeField(text));
    const auto dataBits = WholeNumber(TakeField(text));
    const auto stopBits = WholeNumber(text);
    if (!fourFields || !speed || !parity || (dataBits != 7u && dataBits != 8u) ||
        (stopBits != 1u && stopBits != 2u))
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    return {.bitsPerSecond = *speed,
            .parity = *parity,
            .dataBits = static_cast<std::uint8_t>(*dataBits),
            .stopBits = static_cast<std::uint8_t>(*stopBits)};
}

std::string FormatLineSettings(const LineSettings& line) {
    return std::to_string(line.bitsPerSecond) + "," + LetterOf(line.parity) + "," +
           std::to_string(line.dataBits) + "," + std::to_string(line.stopBits);
}

}  // namespace vantor
