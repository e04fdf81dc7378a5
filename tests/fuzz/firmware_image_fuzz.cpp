// Firmware images, and every other text file that is read into a list of lines.
#include <algorithm>

#include "flash/FirmwareImage.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {

std::vector<std::string> Seeds() {
    return {"S1050000AB000F\r\nS9030000FC\r\n", "++a\n\r\nb\r", "\n\r\r\n"};
}

void Fuzz(std::string_view input) {
    std::string text(input);
    // Sometimes as the end of a file that fills the first block of the list.
    constexpr std::size_t kBlock = 15001;
    if (input.starts_with("++")) text.insert(0, kBlock - (input.size() & 3), '\n');
    const ImageLines lines{std::string(text)};
    std::string again;
    for (std::size_t i = 0; i <= lines.UBound(); ++i) {
        Require(lines[i].find('\n') == std::string_view::npos);
        again.append(lines[i]) += '\n';
    }
    Require(!Accepts([&] { static_cast<void>(lines[lines.UBound() + 1]); }));
    // Put together again, it is the same text but for the ends of its lines.
    if (!text.ends_with('\n')) text += '\n';
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos; ++at)
        // A return at the very end of a file belongs to the line: there is no line feed behind it.
        if (at + 2 != text.size() || input.ends_with('\n')) text.erase(at, 1);
    Require(again == text);
}

}  // namespace vantor
