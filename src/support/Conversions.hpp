// Conversions between text and numbers by the rules that the stored settings and the window designs
// rely on. Digits are ASCII and the decimal separator is a point, whatever the locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Clock.hpp"

namespace vantor {

/// Parses the number at the start of `text`: skips leading spaces, then reads sign,
/// digits, point and exponent up to the first character that is not part of a number.
/// Returns 0 when there is none. Raises RuntimeError 6 when it is too large for a double.
double LeadingNumber(std::string_view text);

/// True when all of `text`, except surrounding spaces, is a number: sign, digits with at most one
/// point, exponent, or a hexadecimal "&H" or octal "&O" integer.
bool IsNumeric(std::string_view text);

/// `text` as a number. Raises RuntimeError 13 when it is not numeric.
double ToDouble(std::string_view text);

/// `value` rounded half to even. Raises RuntimeError 6 outside the type's range.
std::int16_t ToInt16(double value);
std::int32_t ToInt32(double value);

/// `text` as a rounded integer. Raises RuntimeError 13 or 6.
inline std::int16_t ToInt16(std::string_view text) {
    return ToInt16(ToDouble(text));
}
inline std::int32_t ToInt32(std::string_view text) {
    return ToInt32(ToDouble(text));
}

/// Accepts "True" and "False", case-insensitive, and numbers, of which all but 0 are true.
/// Raises RuntimeError 13 for anything else.
bool ToBool(std::string_view text);

/// "True" or "False".
inline std::string FromBool(bool value) {
    return value ? "True" : "False";
}

/// `value` with at least two digits: "05", "12".
std::string TwoDigits(std::int32_t value);

/// `seconds` since midnight, not negative, as a time of day: "00:04:07".
std::string TimeOfDay(std::int32_t seconds);

/// "2026-11-24 21:18:05", the form that reports use.
std::string FormatDateTime(const DateTime& time);

/// a + b and a * b as 32-bit signed numbers. Raise RuntimeError 6 when they do not fit.
std::int32_t CheckedAdd(std::int32_t a, std::int32_t b);
std::int32_t CheckedMultiply(std::int32_t a, std::int32_t b);

}  // namespace vantor
