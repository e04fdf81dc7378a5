// What the user can choose about the terminal. The defaults are the terminal as delivered.
#pragma once

#include <cstdint>

#include "platform/SerialPort.hpp"
#include "terminal/engine/TextEncoding.hpp"

namespace vantor {

/// How received bytes are shown.
enum class ViewMode : std::uint8_t {
    Text,               ///< interpreted by the terminal
    ControlCharacters,  ///< control characters shown, lines broken after LF or a lone CR
    Hex,                ///< offset, 16 bytes, characters
};

/// How `ViewMode::ControlCharacters` shows a control character.
enum class ControlNotation : std::uint8_t { Pictures, Numbers };

/// The time at the start of each line: when its first byte arrived.
enum class TimeStamps : std::uint8_t { Off, TimeOfDay, SincePrevious };

/// What the Enter key sends.
enum class EnterKey : std::uint8_t { Cr, Lf, CrLf };

/// What the Backspace key sends.
enum class BackspaceKey : std::uint8_t { Bs, Del };

/// How a paste is sent.
enum class PastePace : std::uint8_t {
    None,  ///< as fast as the driver takes it
    Line,  ///< a line every 50 ms, as a text file is sent
};

/// Limits of the font size, in points.
inline constexpr int kSmallestPoints = 6;
inline constexpr int kLargestPoints = 36;

struct TerminalOptions {
    // Shown
    ViewMode view = ViewMode::Text;
    ControlNotation controlNotation = ControlNotation::Pictures;
    TimeStamps timeStamps = TimeStamps::Off;
    bool captureTimeStamps = false;  ///< in captures too; times of day if the view has none
    bool darkScheme = false;
    int fontPoints = 0;  ///< 0: as designed; otherwise within the limits above

    // Sent
    bool localEcho = false;
    EnterKey enterKey = EnterKey::Cr;
    BackspaceKey backspaceKey = BackspaceKey::Bs;
    PastePace pastePace = PastePace::None;
    bool askBeforeLongPaste = false;  ///< of more than 20 lines
    bool breakKey = false;            ///< Pause sends a break

    // Received
    bool returnFeeds = false;     ///< a received CR also moves to the next row
    bool answersQueries = false;  ///< device attributes and status reports

    // The line
    LineEncoding encoding = LineEncoding::System;
    FlowControl flowControl = FlowControl::None;  ///< from the next open on
    bool reopens = false;                         ///< opens a lost port again when it is back

    friend bool operator==(const TerminalOptions&, const TerminalOptions&) = default;
};

}  // namespace vantor
