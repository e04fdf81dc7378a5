#include "platform/win32/terminal/Win32TerminalSpeech.hpp"

#include <algorithm>

#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

constexpr UINT kAnnounceIntervalMs = 300;

}  // namespace

std::wstring Win32TerminalSpeech::ShownText() const {
    const TerminalViewport& view = mWindow.control.View();
    std::wstring text;
    for (int row = 0; row < view.Rows(); ++row) {
        if (row > 0) text += L"\r\n";
        std::string characters;
        for (const Cell& cell : view.Row(row).cells) AppendUtf8(characters, cell.character);
        characters.resize(characters.find_last_not_of(' ') + 1);
        text += ToWide(characters);
    }
    return text;
}

LRESULT Win32TerminalSpeech::GiveText(std::size_t room, wchar_t* into) const {
    if (room == 0 || into == nullptr) return 0;
    const std::wstring text = ShownText().substr(0, room - 1);
    *std::copy(text.begin(), text.end(), into) = L'\0';
    return static_cast<LRESULT>(text.size());
}

void Win32TerminalSpeech::AnnounceSoon() {
    if (!mAnnouncing)
        mAnnouncing =
            SetTimer(mWindow.handle, kTerminalAnnounceTimer, kAnnounceIntervalMs, nullptr) != 0;
}

void Win32TerminalSpeech::OnAnnounceTimer() {
    KillTimer(mWindow.handle, kTerminalAnnounceTimer);
    mAnnouncing = false;
    mWindow.context.spokenTexts.SetValue(mWindow.handle, ShownText());
    NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, mWindow.handle, OBJID_CLIENT, CHILDID_SELF);
    NotifyWinEvent(EVENT_OBJECT_LIVEREGIONCHANGED, mWindow.handle, OBJID_CLIENT, CHILDID_SELF);
}

}  // namespace vantor
