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

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Length of the decimal number at the start of `text`, which holds no spaces; 0 when there
/// is none. An exponent counts only when digits follow it.
std::size_t DecimalLength(std::string_view text) {
    std::size_t at = 0;
    const auto digits = [&text, &at] {
        const std::size_t from = at;
        while (at < text.size() && IsDigit(text[at])) ++at;
        return at - from;
    };
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    std::size_t mantissa = digits();
    if (at < text.size() && text[at] == '.') {
        ++at;
        mantissa += digits();
    }
    if (mantissa == 0) return 0;
    const std::size_t beforeExponent = at;
    if (at < text.size() && std::string_view("eEdD").find(text[at]) != std::string_view::npos) {
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
        if (digits() == 0) at = beforeExponent;
    }
    return at;
}

double ParseDecimal(std::string_view number) {
    std::string plain(number);
    std::ranges::replace(plain, 'd', 'e');
    std::ranges::replace(plain, 'D', 'e');
    const std::size_t skip = plain.starts_with('+') ? 1 : 0;
    double value = 0;
    const auto [end, error] =
        std::from_chars(plain.data() + skip, plain.data() + plain.size(), value);
    if (error != std::errc::result_out_of_range) return value;
    // Overflow is an error; an underflow is not, and gives 0 or a subnormal number.
    value = std::strtod(plain.c_str(), nullptr);
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

std::optional<double> WholeNumber(std::string_view text) {
    const std::string_view number = TrimBlanks(text);
    if (number.empty()) return std::nullopt;
    if (const auto radix = ParseRadix(number)) return radix;
    if (DecimalLength(number) != number.size()) return std::nullopt;
    return ParseDecimal(number);
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
    const std::size_t length = DecimalLength(text);
    return length == 0 ? 0 : ParseDecimal(text.substr(0, length));
}

bool IsNumeric(std::string_view text) {
    const std::string_view number = TrimBlanks(text);
    return !number.empty() && (ParseRadix(number) || DecimalLength(number) == number.size());
}

double ToDouble(std::string_view text) {
    if (const auto number = WholeNumber(text)) return *number;
    throw RuntimeError(ErrorNumber::TypeMismatch);
}

std::int16_t ToInt16(double value) {
    return Rounded<std::int16_t>(value);
}

std::int32_t ToInt32(double value) {
    return Rounded<std::int32_t>(value);
}

std::int16_t ToInt16(std::string_view text) {
    return ToInt16(ToDouble(text));
}

std::int32_t ToInt32(std::string_view text) {
    return ToInt32(ToDouble(text));
}

bool ToBool(std::string_view text) {
    const std::string word = UpperCase(TrimBlanks(text));
    if (word == "TRUE") return true;
    if (word == "FALSE") return false;
    return ToDouble(text) != 0;
}

std::string FromBool(bool value) {
    return value ? "True" : "False";
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

std::int32_t CheckedAdd(std::int32_t a, std::int32_t b) {
    return Checked(std::int64_t{a} + b);
}

std::int32_t CheckedMultiply(std::int32_t a, std::int32_t b) {
    return Checked(std::int64_t{a} * b);
}

}  // namespace vantor
