// Clipboard access, text only.
#pragma once

#include <string>

namespace vantor {

/// Exchanges text with other programs. Never raises.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// The clipboard's text; empty when it holds none.
    virtual std::string Text() const = 0;

    /// Replaces the contents with `text`. No effect while another program has the clipboard open.
    virtual void Text(const std::string& text) = 0;
};

/// A clipboard private to this process, for systems without one and for tests.
class MemoryClipboard : public Clipboard {
public:
    std::string Text() const override { return mText; }
    void Text(const std::string& text) override { mText = text; }

private:
    std::string mText;
};

}  // namespace vantor
