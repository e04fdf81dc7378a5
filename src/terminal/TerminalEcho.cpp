#include "terminal/TerminalEcho.hpp"

#include <array>
#include <string>
#include <utility>

#include "support/text/Unicode.hpp"

namespace vantor {

void TerminalEcho::Show(std::string_view bytes) {
    std::array<char32_t, 256> characters;
    while (!bytes.empty()) {
        const auto decoded = mDecoder.Decode(bytes, characters);
        mScreen.Print({characters.data(), decoded.characters});
        bytes.remove_prefix(decoded.bytes);
        if (decoded.bytes > 0 || bytes.empty()) continue;
        if (mDecoder.Interrupt()) mScreen.Print(U"\uFFFD");
        if (bytes.starts_with("\r\n")) bytes.remove_prefix(1);
        ShowControl(bytes.front());
        bytes.remove_prefix(1);
    }
}

void TerminalEcho::ShowControl(char byte) {
    if (byte == '\r' || byte == '\n') return EndLine();
    // DEL is "^?".
    const std::array shown = {U'^', static_cast<char32_t>(static_cast<unsigned char>(byte) ^ 0x40)};
    mScreen.Print({shown.data(), shown.size()});
}

void TerminalEcho::ShowLine(std::string_view text) {
    if (mScreen.Cursor().column > 0) EndLine();
    std::u32string characters;
    while (!text.empty()) characters += TakeCodePoint(text);
    const Cell pen = std::exchange(mScreen.pen, {});
    mScreen.Print(characters);
    EndLine();
    mScreen.pen = pen;
}

void TerminalEcho::EndLine() {
    mScreen.MoveToColumn(0);
    mScreen.LineFeed();
}

}  // namespace vantor
