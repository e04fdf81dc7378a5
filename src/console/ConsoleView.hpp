// A flash session on a console: its progress, messages and question as text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "console/Options.hpp"
#include "console/ProgressLine.hpp"
#include "console/SessionView.hpp"

namespace vantor {

/// The view of a session whose image is named on the command line, and the boxes of the error
/// handler. It has no panels and no buttons; the interrupt key is the abort button. Of a box, the
/// title stands above the message. Warnings and failures go to standard error. Questions are asked
/// on the console, on standard error where the output is redirected, unless `--yes` answers them in
/// advance.
class ConsoleView : public SessionView {
public:
    /// All outlive the view.
    ConsoleView(Console& console, const StringTable& strings, ProgressLine& progress,
                const Options& options)
        : mConsole(console), mStrings(strings), mProgress(progress), mOptions(options) {}

    BoxAnswer Show(const MessageBoxRequest& request) override;

    bool AbortAllowed() const override { return mAbortAllowed; }
    /// On standard error, under `--quiet` too: it is not about progress.
    void Tell(const Notice& notice) override;

    bool Gone() const override { return false; }  // the user cannot close it
    // The view and the session are members of one object, which outlives every handler.
    std::shared_ptr<void> KeepAlive() override { return nullptr; }
    void Begin() override {}
    std::optional<std::string> ChooseImage() override { return mOptions.image; }
    void HoldSystem(const std::string& reason) override;
    void Busy(bool) override {}
    bool Confirm(const std::string& question) override;
    void ShowStage(const std::string& name) override { Print(name); }
    void AllowAbort(bool allowed) override { mAbortAllowed = allowed; }
    void ShowLine(std::int32_t index, std::int32_t last, std::int16_t elapsedSeconds) override;
    void ShowPercent(std::int16_t percent) override;
    void ShowWarning(const std::string& text) override;
    void Beep() override;
    void OpenStatus(const std::string& message) override;
    void CloseStatus() override {}
    void ShowAborted(const std::string&) override {}  // the report says it too
    void Report(BoxIcon icon, const std::string& text, const std::string& title) override;
    void ClearProgress() override {}
    void End() override {}
    void Exit() override {}

private:
    BoxAnswer Answer();
    /// Prints a line below the progress, unless `--quiet` leaves out everything but boxes.
    void Print(const std::string& text);

    Console& mConsole;
    const StringTable& mStrings;
    ProgressLine& mProgress;
    const Options& mOptions;
    bool mAbortAllowed = false;
    std::string mLine;  // as shown last
    std::string mElapsed;
};

}  // namespace vantor
