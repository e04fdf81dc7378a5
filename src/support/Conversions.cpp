#include "support/Conversions.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

#include "support/errors/RuntimeError.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

struct Decimal {
    double value = 0;        // infinite when too large
    std::size_t length = 0;  // of its text; 0 when there is no number
};

/// The decimal number at the start of `text`. An exponent, marked by "e" or "d", counts only when
/// digits follow it.
Decimal ParseDecimal(std::string_view text) {
    // std::strtod also reads blanks, "inf", "nan" and "0x1F".
    std::string plain(text.substr(0, text.find_first_not_of("0123456789.+-eEdD")));
    std::ranges::replace_if(
        plain, [](char c) { return c == 'd' || c == 'D'; }, 'e');
    char* end = nullptr;
    const double value = std::strtod(plain.c_str(), &end);
    return {value, static_cast<std::size_t>(end - plain.c_str())};
}

double Finite(double value) {
    if (std::isinf(value)) throw RuntimeError(ErrorNumber::Overflow);
    return value;
}

/// The 32-bit pattern of "&H1F" or "&O17"; a value that fits in 16 bits is read as signed 16-bit.
std::optional<double> ParseRadix(std::string_view text) {
    if (text.size() < 3 || text[0] != '&') return std::nullopt;
    const std::string letter = UpperCase(text.substr(1, 1));
    if (letter != "H" && letter != "O") return std::nullopt;
    std::uint32_t bits = 0;
    const std::string_view digits = text.substr(2);
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), bits, letter == "H" ? 16 : 8);
    if (error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
    if (bits <= 0xffffu) return static_cast<std::int16_t>(bits);
    return static_cast<std::int32_t>(bits);
}

/// All of `text` except surrounding spaces as a number; infinite when it is too large.
std::optional<double> ParseWhole(std::string_view text) {
    const std::string_view number = TrimBlanks(text);
    if (const auto radix = ParseRadix(number)) return radix;
    const auto [value, length] = ParseDecimal(number);
    if (length == 0 || length != number.size()) return std::nullopt;
    return value;
}

template <typename Integer>
Integer Rounded(double value) {
    // In the default rounding mode std::nearbyint rounds half to even.
    const double rounded = std::nearbyint(value);
    if (!(rounded >= std::numeric_limits<Integer>::min() &&
          rounded <= std::numeric_limits<Integer>::max()))
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<Integer>(rounded);
}

std::int32_t Checked(std::int64_t value) {
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max())
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<std::int32_t>(value);
}

}  // namespace

double LeadingNumber(std::string_view text) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(' ')));
    return Finite(ParseDecimal(text).value);
}

bool IsNumeric(std::string_view text) {
    return ParseWhole(text).has_value();
}

double ToDouble(std::string_view text) {
    if (const auto number = ParseWhole(text)) return Finite(*number);
    throw RuntimeError(ErrorNumber::TypeMismatch);
}

std::int16_t ToInt16(double value) {
    return Rounded<std::int16_t>(value);
}

std::int32_t ToInt32(double value) {
    return Rounded<std::int32_t>(value);
}

bool ToBool(std::string_view text) {
    const std::string word = UpperCase(TrimBlanks(text));
    if (word == "TRUE") return true;
    if (word == "FALSE") return false;
    return ToDouble(text) != 0;
}

std::string TwoDigits(std::int32_t value) {
    const std::string digits = std::to_string(value < 0 ? -std::int64_t{value} : value);
    return (value < 0 ? "-" : "") + std::string(digits.size() < 2 ? 2 - digits.size() : 0, '0') +
           digits;
}

std::string TimeOfDay(std::int32_t seconds) {
    return TwoDigits(seconds / 3600) + ":" + TwoDigits(seconds / 60 % 60) + ":" +
           TwoDigits(seconds % 60);
}

std::string FormatDateTime(const DateTime& time) {
    return std::to_string(time.year) + "-" + TwoDigits(time.month) + "-" + TwoDigits(time.day) +
           " " + TwoDigits(time.hour) + ":" + TwoDigits(time.minute) + ":" + TwoDigits(time.second);
}

std::int32_t CheckedAdd(std::int32_t a, std::int32_t b) {
    return Checked(std::int64_t{a} + b);
}

std::int32_t CheckedMultiply(std::int32_t a, std::int32_t b) {
    return Checked(std::int64_t{a} * b);
}

}  // namespace vantor
