// What screen readers get of a terminal's window: its shown text, and word of new text.
#pragma once

#include <string>

#include "platform/win32/terminal/Win32TerminalWindow.hpp"

namespace vantor {

class Win32TerminalSpeech {
public:
    /// `window` outlives the speech.
    explicit Win32TerminalSpeech(const Win32TerminalWindow& window) : mWindow(window) {}

    /// The shown rows, with CR LF between them and without trailing blanks.
    std::wstring ShownText() const;
    /// WM_GETTEXT: copies the text into a buffer for `room` characters; returns its length.
    LRESULT GiveText(std::size_t room, wchar_t* into) const;

    /// Text has arrived. Screen readers speak at each event, so text that arrives in pieces raises
    /// one for many, with kTerminalAnnounceTimer.
    void AnnounceSoon();
    void OnAnnounceTimer();

private:
    const Win32TerminalWindow& mWindow;
    bool mAnnouncing = false;  // an announcement is due
};

}  // namespace vantor
