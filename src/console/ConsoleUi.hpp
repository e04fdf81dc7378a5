// Windows, message boxes and dialogs of a console program, written to the terminal as text.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "console/ProgressLine.hpp"
#include "platform/CommonDialogs.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/MessagePump.hpp"
#include "platform/Peers.hpp"
#include "platform/Pictures.hpp"
#include "platform/Shell.hpp"

namespace vantor {

/// Boxes as text: the title above the message. Warnings and failures go to standard error.
/// Questions are asked on the terminal unless they are answered in advance.
class ConsoleBoxes : public MessageBoxes {
public:
    ConsoleBoxes(Console& console, const StringTable& strings, ProgressLine& progress,
                 std::string defaultTitle, bool alwaysYes)
        : mConsole(console),
          mStrings(strings),
          mProgress(progress),
          mDefaultTitle(std::move(defaultTitle)),
          mAlwaysYes(alwaysYes) {}

    BoxAnswer Show(const MessageBoxRequest& request) override;
    void Beep() override { mConsole.WriteError("\a"); }

private:
    BoxAnswer Ask();

    Console& mConsole;
    const StringTable& mStrings;
    ProgressLine& mProgress;
    std::string mDefaultTitle;
    bool mAlwaysYes;
};

/// The file dialog of a program that gets the file from its command line.
class ConsoleDialogs : public CommonDialogs {
public:
    explicit ConsoleDialogs(std::string path) : mPath(std::move(path)) {}
    bool OpenFile(FileDialogRecord& record) override;
    bool SaveFile(FileDialogRecord&) override { return false; }

private:
    std::string mPath;
};

/// A terminal cannot show pictures.
class ConsolePictures : public Pictures {
public:
    std::shared_ptr<const Picture> Load(const std::string&) override { return nullptr; }
};

/// A terminal has no registered programs.
class ConsoleShell : public Shell {
public:
    std::int32_t Execute(const ShellRequest&) override { return kNoAssociation; }
    std::int32_t Start(const ShellRequest&, ShellProcess& process) override {
        process = 0;
        return kNoAssociation;
    }
    bool IsActive(ShellProcess) const override { return false; }
    void Release(ShellProcess) override {}

private:
    static constexpr std::int32_t kNoAssociation = 31;
};

/// Shows the progress bar of the console's window as a line, and prints the messages of others.
class ConsolePeers : public Peers {
public:
    ConsolePeers(Console& console, ProgressLine& progress, bool quiet)
        : mConsole(console), mProgress(progress), mQuiet(quiet) {}

    std::unique_ptr<FormPeer> Draw(Form& form) override;
    Size ScreenSize() const override { return {}; }
    void HoldSystem(const std::string& reason) override { mConsole.HoldSystem(reason); }
    void SetMousePointer(MousePointer) override {}  // a terminal has none

private:
    Console& mConsole;
    ProgressLine& mProgress;
    bool mQuiet;
};

/// Wraps a message pump and calls a function after each pass, so that the interrupt key is polled
/// in every wait of the session.
class WatchedPump : public MessagePump {
public:
    WatchedPump(MessagePump& inner, std::function<void()> afterRound)
        : mInner(inner), mAfterRound(std::move(afterRound)) {}

    void PumpPending() override {
        mInner.PumpPending();
        mAfterRound();
    }
    void AwaitInput() override { mInner.AwaitInput(); }
    void Run() override { mInner.Run(); }
    void Quit() override { mInner.Quit(); }
    TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) override {
        return mInner.StartTimer(intervalMs, std::move(tick));
    }
    void StopTimer(TimerId id) override { mInner.StopTimer(id); }

private:
    MessagePump& mInner;
    std::function<void()> mAfterRound;
};

}  // namespace vantor
