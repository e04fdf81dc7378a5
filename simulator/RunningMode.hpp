// The indicator as it weighs: what it answers to a person who types commands at it. For practice;
// the figures are made up, and it knows nothing of firmware.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

/// Echoes what it receives, as a terminal's user expects, and answers each line that CR ends.
/// Backspace takes the last character back; LF is passed over.
class RunningMode {
public:
    /// Takes bytes in any portions; returns what goes out for them.
    std::string Receive(std::string_view bytes);

private:
    std::string TakeCharacter(char character);
    std::string Answer(std::string_view line);
    std::string Set(std::string_view name, const std::string& value);
    std::string Weight(std::string_view kind) const;
    std::string Help() const;

    std::string mLine;
    std::string mUnits = "kg";
    std::string mDecimals = "2";
    std::string mId = "01";
    int mTareHundredths = 0;
};

}  // namespace vantor
