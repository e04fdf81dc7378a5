// What a flash session shows and asks, in the session's own words. A main window and a console
// implement it; the session knows neither windows nor controls.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/MessageBoxes.hpp"

namespace vantor {

/// The calls come in the order of a session. Texts are in the user's language. An implementation
/// may raise; the session then ends, and the error is reported.
class FlashView {
public:
    virtual ~FlashView() = default;

    /// True once the user has closed the view. Every wait of the session then ends.
    virtual bool Gone() const = 0;
    /// Keeps the view, and the session that it owns, alive until the result is destroyed.
    virtual std::shared_ptr<void> KeepAlive() = 0;

    /// Shows the session's panel and disables the commands that must not run beside a session.
    virtual void Begin() = 0;
    /// The path of the image that the user selects; empty when the user cancels.
    virtual std::optional<std::string> ChooseImage() = 0;
    /// Prevents sleep and log-off because of `reason`; an empty reason ends it.
    virtual void HoldSystem(const std::string& reason) = 0;
    /// Shows or removes the wait cursor.
    virtual void Busy(bool busy) = 0;
    /// Asks a question of safety; true for Yes only.
    virtual bool Confirm(const std::string& question) = 0;

    /// A stage begins that has no progress: `name` describes it.
    virtual void ShowStage(const std::string& name) = 0;
    virtual void AllowAbort(bool allowed) = 0;
    /// Line `index` of 0 to `last` is about to be sent, `elapsedSeconds` after the start.
    virtual void ShowLine(std::int32_t index, std::int32_t last, std::int16_t elapsedSeconds) = 0;
    /// The percentage that belongs to the line shown last, 0 to 100.
    virtual void ShowPercent(std::int16_t percent) = 0;
    /// An instruction that applies from now on; an empty text removes it.
    virtual void ShowWarning(const std::string& text) = 0;
    virtual void Beep() = 0;

    /// Shows a status window with `message` until it is closed. Both may be repeated.
    virtual void OpenStatus(const std::string& message) = 0;
    virtual void CloseStatus() = 0;

    /// The session was aborted: `text` replaces the stage.
    virtual void ShowAborted(const std::string& text) = 0;
    /// Reports an end of the session; returns when the user has read it. An empty title is that of
    /// the program.
    virtual void Report(BoxIcon icon, const std::string& text, const std::string& title) = 0;
    virtual void ClearProgress() = 0;
    /// Undoes `Begin`.
    virtual void End() = 0;
    /// Closes the view, as the user has requested during the session.
    virtual void Exit() = 0;
};

}  // namespace vantor
