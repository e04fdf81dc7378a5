#include "console/ConsoleUi.hpp"

#include "console/ConsoleWindow.hpp"
#include "platform/Console.hpp"
#include "platform/StringTable.hpp"
#include "support/Conversions.hpp"

namespace vantor {
namespace {

/// `text` with "\n" line ends, and without spaces before them.
std::string ForConsole(const std::string& text) {
    std::string lines;
    for (const char c : text) {
        if (c == '\r') continue;
        if (c == '\n')
            while (lines.ends_with(' ')) lines.pop_back();
        lines += c;
    }
    return lines;
}

/// The console's window: its progress bar is shown as the progress line.
class WindowPeer : public FormPeer {
public:
    WindowPeer(ConsoleWindow& window, ProgressLine& progress, Console& console)
        : mWindow(window), mProgress(progress), mConsole(console) {}

    void Show(ShowMode, NativeWindow) override {}
    void FormChanged(Property) override {}
    void ControlChanged(const Control& control, Property property) override {
        // There is no progress before the first line, but that stage can last a minute.
        if (&control == &mWindow.cmdFlashAbort && property == Property::Enabled &&
            control.Enabled() && !mProgress.Running())
            mConsole.Write(mWindow.lblStatus.Caption() + "\n");
        // The session updates the bar last for each line. At the end it clears the line's text
        // before it resets the bar; that is not progress.
        if (&control == &mWindow.pbarStatus && property == Property::Value &&
            !mWindow.lblStatus.Caption().empty())
            mProgress.Show(mWindow.pbarStatus.Value(), mWindow.lblStatus.Caption(),
                           mWindow.lblElapsed.Caption());
        if (&control == &mWindow.lblWarning && property == Property::Caption &&
            !control.Caption().empty()) {
            mProgress.Finish();
            mConsole.Write(ForConsole(control.Caption()) + "\n");
        }
    }
    NativeWindow WindowHandle() const override { return 0; }

private:
    ConsoleWindow& mWindow;
    ProgressLine& mProgress;
    Console& mConsole;
};

/// Any other window: prints the message of each immediate redraw.
class MessagePeer : public FormPeer {
public:
    MessagePeer(ProgressLine& progress, Console& console)
        : mProgress(progress), mConsole(console) {}

    void Show(ShowMode, NativeWindow) override {}
    void FormChanged(Property) override {}
    void ControlChanged(const Control& control, Property property) override {
        if (property != Property::Repaint) return;
        mProgress.Finish();
        mConsole.Write(ForConsole(control.Caption()) + "\n");
    }
    NativeWindow WindowHandle() const override { return 0; }

private:
    ProgressLine& mProgress;
    Console& mConsole;
};

}  // namespace

BoxAnswer ConsoleBoxes::Show(const MessageBoxRequest& request) {
    mProgress.Finish();
    const bool bad = request.icon == BoxIcon::Critical || request.icon == BoxIcon::Exclamation;
    const std::string& title = request.title.empty() ? mDefaultTitle : request.title;
    const std::string text = title + "\n" + ForConsole(request.text) + "\n";
    if (bad)
        mConsole.WriteError(text);
    else
        mConsole.Write(text);
    if (request.buttons == BoxButtons::Ok) return BoxAnswer::Ok;
    return mAlwaysYes ? BoxAnswer::Yes : Ask();
}

BoxAnswer ConsoleBoxes::Ask() {
    mConsole.Write(mStrings.Text(Str::YesNoPrompt));
    const std::string answer = UpperCase(TrimBlanks(mConsole.ReadLine().value_or("")));
    const bool yes =
        !answer.empty() && answer.substr(0, 1) == UpperCase(mStrings.Text(Str::YesLetter));
    return yes ? BoxAnswer::Yes : BoxAnswer::No;
}

bool ConsoleDialogs::OpenFile(FileDialogRecord& record) {
    record.file = mPath + std::string(2, '\0');
    record.fileTitle = mPath.substr(mPath.find_last_of("\\/") + 1) + std::string(2, '\0');
    return true;
}

std::unique_ptr<FormPeer> ConsolePeers::Draw(Form& form) {
    if (mQuiet) return nullptr;
    if (auto* window = dynamic_cast<ConsoleWindow*>(&form))
        return std::make_unique<WindowPeer>(*window, mProgress, mConsole);
    return std::make_unique<MessagePeer>(mProgress, mConsole);
}

}  // namespace vantor
