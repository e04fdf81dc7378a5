// The updates that one command line asks for: one, one after the other, or several at once.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "console/ExitStatus.hpp"
#include "console/FlashRun.hpp"
#include "console/JsonView.hpp"
#include "console/Options.hpp"
#include "console/SessionReport.hpp"
#include "console/image/ImageCheck.hpp"
#include "platform/NativePlatform.hpp"

namespace vantor {

/// Reads the image. Raises RuntimeError 5 with a sentence when it is missing or unreadable.
std::string ReadImage(const std::string& path, const Files& files, const StringTable& strings);

/// Tells the error being handled (see PendingError), with `json` also as the end of a run that was
/// refused. Returns its exit status.
ExitStatus TellPendingError(NativePlatform& native, const JsonEvents& events, bool json);

class FlashJob {
public:
    /// All outlive the object.
    FlashJob(NativePlatform& native, const Options& options, JsonEvents& events)
        : mNative(native), mOptions(options), mEvents(events), mStrings(*native.strings) {}

    /// Raises RuntimeError 5 with a sentence for everything that prevents the updates.
    ExitStatus Run();

private:
    /// One update, or what ended the wait for it.
    struct Unit {
        SessionEnd end;
        bool stopped = false;  ///< a wait had to end
    };
    using Limit = std::optional<std::uint64_t>;  // milliseconds to wait; nothing: without end

    void CheckBefore();
    void CheckImageToSend();
    void CheckRecord();
    ExitStatus RunSeveral();
    ExitStatus RunRepeatedly();
    Unit FlashOne(bool wait, Limit limit);
    Unit FlashAt(const Options& options, bool wait, Limit limit);
    /// The options with the name of their port, once it is present; nothing when the wait has
    /// ended, with the reason in `unit`.
    std::optional<Options> WithPort(bool wait, Limit limit, Unit& unit);
    IndicatorWait::Result Await(FlashRun& run, Limit limit);
    void EndOfWait(IndicatorWait::Result result, Unit& unit);
    std::string Time() const;  // ISO 8601
    SessionFacts FactsAt(const std::string& port) const;
    /// Writes the record, except of an update that was only waited for, and the JSON end; with
    /// --repeat tells the end and what to do next.
    void Conclude(const SessionFacts& facts, Unit& unit);
    void ShowWaiting(const char* stage, const std::string& text);
    void TellEnd(const SessionEnd& end);
    Limit WaitLimit() const;

    NativePlatform& mNative;
    const Options& mOptions;
    JsonEvents& mEvents;
    const StringTable& mStrings;
    std::string mImage;
    ImageReport mReport;
    std::uint64_t mUnits = 0;  // ended with --repeat
};

}  // namespace vantor
