// The clipboard, as far as texts go.
#pragma once

#include <string>

namespace vantor {

/// The text that programs hand each other. Never raises.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// The text in it; empty when it holds none, or something else.
    virtual std::string Text() const = 0;

    /// Replaces its contents by `text`. A clipboard that another program holds stays as it is.
    virtual void Text(const std::string& text) = 0;
};

/// A clipboard of this process alone, for systems and tests without one.
class MemoryClipboard : public Clipboard {
public:
    std::string Text() const override { return mText; }
    void Text(const std::string& text) override { mText = text; }

private:
    std::string mText;
};

}  // namespace vantor
