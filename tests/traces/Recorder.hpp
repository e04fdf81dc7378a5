// Writes down, in order and with the virtual time, everything that a user, the indicator or the
// system can notice of a program on the headless platform.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "controls/Form.hpp"
#include "platform/headless/HeadlessPlatform.hpp"

namespace vantor::traces {

enum class Quoting : std::uint8_t { Text, Bytes };

/// `text` in quotes, with control characters escaped, and in bytes everything outside ASCII.
std::string Quoted(std::string_view text, Quoting quoting = Quoting::Text);

class Recorder {
public:
    Recorder();
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    HeadlessPlatform& Headless() { return mHeadless; }
    /// The platform for the program under test: every service reports here what it does.
    Platform& Services();
    /// One line of the trace.
    void Note(const std::string& event);
    const std::string& Trace() const { return mTrace; }
    /// Notes all that `form` shows: its size, and each control in tab order.
    void Describe(const Form& form);

    /// Called after a control's caption has changed to the text.
    std::function<void(const std::string& text)> onText;

    /// Name of the window with this handle; "none" for 0.
    std::string NameOf(NativeWindow window) const;

    // For the services that report here.
    void Opened(const Form& form, NativeWindow window);
    void Closed(const Form& form);
    void ControlChanged(const Form& form, const Control& control, Property property);

private:
    struct Wrappers;

    HeadlessPlatform mHeadless;
    std::unique_ptr<Wrappers> mWrappers;
    std::string mTrace;
    std::uint32_t mStart;
    std::uint32_t mNotedAt = 0;
    std::map<const Control*, std::map<std::string, std::string>> mSeen;
    std::map<NativeWindow, const Form*> mForms;
};

}  // namespace vantor::traces
