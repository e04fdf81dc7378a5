// A flash session as JSON objects, one a line on standard output.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "console/Json.hpp"
#include "console/Options.hpp"
#include "console/SessionView.hpp"
#include "console/Traffic.hpp"
#include "platform/Clock.hpp"
#include "platform/Console.hpp"

namespace vantor {

/// Writes objects that begin with the members that all have: "v" (the version of the format),
/// "event", "ms" (since this object was created) and "port".
class JsonEvents {
public:
    /// Both outlive the object. `port` is the port as the user names it, empty while unknown.
    JsonEvents(Console& console, const Clock& clock, std::string port)
        : mConsole(console), mClock(clock), mPort(std::move(port)), mStart(clock.Milliseconds()) {}

    void SetPort(const std::string& port) { mPort = port; }
    JsonObject Begin(const char* event) const;
    void Write(const JsonObject& object) const { mConsole.Write(object.Line()); }

private:
    static constexpr int kVersion = 1;

    Console& mConsole;
    const Clock& mClock;
    std::string mPort;
    std::uint32_t mStart;
};

/// The view of a session with `--json --yes`. It learns from the traffic of the line when a line of
/// the image is sent again, and why.
class JsonView : public SessionView, public TrafficListener {
public:
    /// All outlive the view.
    JsonView(JsonEvents& events, Console& console, const Options& options)
        : mEvents(events), mConsole(console), mOptions(options) {}

    BoxAnswer Show(const MessageBoxRequest& request) override;
    bool AbortAllowed() const override { return mAbortAllowed; }
    void Tell(const Notice& notice) override;

    bool Gone() const override { return false; }
    std::shared_ptr<void> KeepAlive() override { return nullptr; }
    void Begin() override {}
    std::optional<std::string> ChooseImage() override { return mOptions.image; }
    void HoldSystem(const std::string& reason) override { mConsole.HoldSystem(reason); }
    void Busy(bool) override {}
    bool Confirm(const std::string& question) override;
    void ShowStage(const std::string& name) override { Stage("handshake", name); }
    void AllowAbort(bool allowed) override { mAbortAllowed = allowed; }
    void ShowLine(std::int32_t index, std::int32_t last, std::int16_t elapsedSeconds) override;
    void ShowPercent(std::int16_t) override {}
    void ShowWarning(const std::string& text) override;
    void Beep() override;
    void OpenStatus(const std::string& message) override;
    void CloseStatus() override {}
    void ShowAborted(const std::string&) override {}
    void Report(BoxIcon icon, const std::string& text, const std::string& title) override;
    void ClearProgress() override {}
    void End() override {}
    void Exit() override {}

    void Opened(const std::string&, const LineSettings&) override {}
    void Closed() override {}
    void Sent(std::string_view bytes) override;
    void Received(std::string_view bytes) override { mReply += bytes; }
    void Discarded(std::string_view bytes) override { mReply += bytes; }

private:
    void Stage(const char* code, const std::string& text);
    void Attempt();

    JsonEvents& mEvents;
    Console& mConsole;
    const Options& mOptions;
    bool mAbortAllowed = false;
    bool mSendingImage = false;
    bool mPartSent = false;  // a line without its end
    std::int32_t mIndex = 0;
    std::int32_t mTotal = 0;
    int mAttempt = 0;
    std::string mReply;  // to the last attempt
};

}  // namespace vantor
