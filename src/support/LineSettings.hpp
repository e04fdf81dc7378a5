// The text form of line parameters: "38400,N,8,2" (bits per second, parity letter N, O or E, data
// bits, stop bits).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/SerialPort.hpp"

namespace vantor {

/// "N", "O" or "E".
char LetterOf(Parity parity);

/// The parity of a letter in either case; nothing for any other text.
std::optional<Parity> ParityOf(std::string_view letter);

/// Raises RuntimeError 380 for any other text.
LineSettings ParseLineSettings(std::string_view text);

std::string FormatLineSettings(const LineSettings& line);

}  // namespace vantor
