// Firmware images and other text files that are read into a list of lines.
#include <algorithm>

#include "flash/FirmwareImage.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {

std::vector<std::string> Seeds() {
    return {"S1050000AB000F\r\nS9030000FC\r\n", "++a\n\r\nb\r", "\n\r\r\n"};
}

void Fuzz(std::string_view input) {
    std::string text(input);
    // With the prefix "++", the input is the end of a file that fills the list's first block.
    constexpr std::size_t kBlock = 15001;
    if (input.starts_with("++")) text.insert(0, kBlock - (input.size() & 3), '\n');
    const ImageLines lines{std::string(text)};
    std::string again;
    for (std::size_t i = 0; i <= lines.UBound(); ++i) {
        Require(lines[i].find('\n') == std::string_view::npos);
        again.append(lines[i]) += '\n';
    }
    Require(!Accepts([&] { static_cast<void>(lines[lines.UBound() + 1]); }));
    // Joined again, the lines equal the text except for line ends.
    if (!text.ends_with('\n')) text += '\n';
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos; ++at)
        // A CR at the end of the file without a line feed is part of the line.
        if (at + 2 != text.size() || input.ends_with('\n')) text.erase(at, 1);
    Require(again == text);
}

}  // namespace vantor
