// The indicator in running mode: replies to commands typed in a terminal. For practice: the weights
// are made up. Firmware loading is not part of it.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

/// Echoes what it receives and replies to each line ended by CR. Backspace deletes the last
/// character; LF is ignored.
class RunningMode {
public:
    /// Takes bytes in chunks of any size; returns the bytes to transmit.
    std::string Receive(std::string_view bytes);

private:
    std::string TakeCharacter(char character);
    std::string Answer(std::string_view line);
    std::string Set(std::string_view name, const std::string& value);
    std::string Weight(std::string_view kind) const;

    std::string mLine;
    std::string mUnits = "kg";
    std::string mDecimals = "2";
    std::string mId = "01";
    int mTareHundredths = 0;
};

}  // namespace vantor
