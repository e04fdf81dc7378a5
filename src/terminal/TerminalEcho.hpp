// Text that the terminal itself puts on its screen: the local echo of what is sent, and notices.
#pragma once

#include <string_view>

#include "terminal/engine/TerminalScreen.hpp"
#include "terminal/engine/TextEncoding.hpp"

namespace vantor {

/// Does not interpret what it shows, so that neither a sent escape sequence nor one that is being
/// received is disturbed.
class TerminalEcho {
public:
    /// `screen` outlives the echo.
    explicit TerminalEcho(TerminalScreen& screen) : mScreen(screen) {}

    /// The encoding of sent bytes.
    void Encoding(const TextEncoding& encoding) { mDecoder.Encoding(encoding); }

    /// Shows sent bytes: CR, LF and CR LF as a line end, other control characters as "^[", the
    /// rest as characters.
    void Show(std::string_view bytes);
    /// Shows UTF-8 text in a line of its own, in the default colours.
    void ShowLine(std::string_view text);

private:
    void ShowControl(char byte);
    void EndLine();

    TerminalScreen& mScreen;
    TextDecoder mDecoder;
};

}  // namespace vantor
