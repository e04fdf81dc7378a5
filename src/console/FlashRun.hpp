// One update: the flash session with its view, settings, ports and logs.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/base/CErrHandler.hpp"
#include "console/ConsoleView.hpp"
#include "console/ExitStatus.hpp"
#include "console/IndicatorWait.hpp"
#include "console/JsonView.hpp"
#include "console/Options.hpp"
#include "console/Practice.hpp"
#include "console/RoundTrips.hpp"
#include "console/Traffic.hpp"
#include "console/Transcript.hpp"
#include "console/WatchedPump.hpp"
#include "console/image/ImageCheck.hpp"
#include "flash/FlashSession.hpp"
#include "platform/NativePlatform.hpp"
#include "platform/headless/HeadlessFiles.hpp"
#include "settings/CAppSettings.hpp"
#include "support/Traps.hpp"

namespace vantor {

/// How a session ended, for records and reports.
struct SessionEnd {
    FlashOutcome outcome = FlashOutcome::None;
    std::string why;  ///< the system's reason for a port that did not open
    SessionCounts counts;
    std::uint64_t ms = 0;     ///< from the start of the session to its end
    bool recordLost = false;  ///< its record could not be written
};

/// The exit status; a lost record turns success into failure.
ExitStatus StatusOf(const SessionEnd& end);

/// Flashes one indicator. The object is for one session; members are in construction order.
class FlashRun {
public:
    /// All outlive the object. `events` is null without `--json`. Raises RuntimeError 5 with a
    /// sentence for stored settings that cannot be read, an option that the settings or the
    /// practice refuse, and a transcript that cannot be written.
    FlashRun(NativePlatform& native, const Options& options, const std::string& image,
             JsonEvents* events);
    FlashRun(const FlashRun&) = delete;
    FlashRun& operator=(const FlashRun&) = delete;

    SessionEnd Flash();

    /// As `IndicatorWait` does, before `Flash`.
    IndicatorWait::Result AwaitIndicator(std::optional<std::uint64_t> limitMs,
                                         const std::function<void(IndicatorWait::Stage)>& show);
    /// Waits, after `Flash`, until the indicator or its port has gone, or for the Enter key. False
    /// after the interrupt key.
    bool AwaitGone();

    /// The name that opens the port: "COM3".
    std::string PortName() const { return mSettings.CommPort(); }
    /// "38400,N,8,2"
    std::string Line() const;
    /// The serial number of the port's adapter; empty when unknown.
    std::string AdapterSerial() const;

private:
    /// Installs the error handler as the sink of all traps during its lifetime.
    class SinkScope {
    public:
        SinkScope(CErrHandler& errors, const Folders& folders);
        ~SinkScope() { SetErrorSink(nullptr); }
        SinkScope(const SinkScope&) = delete;
        SinkScope& operator=(const SinkScope&) = delete;
    };

    void LoadSettings();
    void Override(const std::optional<std::string>& value, const char* option,
                  void (CAppSettings::*set)(const std::string&));
    std::unique_ptr<Practice> MakePractice(const std::string& image);
    std::unique_ptr<Transcript> MakeTranscript();
    std::vector<TrafficListener*> Listeners();
    SerialPorts& RealPorts() { return mPractice ? mPractice->Ports() : *mNative.ports; }
    std::string OpenFailure() const;
    IndicatorWait Wait();
    void Watch();
    void HintAtLateReplies();
    bool CanAbort() const;
    void Interrupted();

    NativePlatform& mNative;
    const Options& mOptions;
    // The session reads the image only after SYSLOAD. If the file were changed, removed or locked
    // after the check, the indicator would be left without firmware.
    HeadlessFiles mFiles;
    ProgressLine mProgress{*mNative.console, *mNative.clock, *mNative.strings};
    ConsoleView mConsoleView{*mNative.console, *mNative.strings, mProgress, mOptions};
    std::optional<JsonView> mJsonView;
    SessionView& mView;
    CErrHandler mErrors{
        {*mNative.clock, *mNative.files, *mNative.folders, mView, *mNative.process}};
    SinkScope mSink{mErrors, *mNative.folders};
    CAppSettings mSettings{*mNative.registry, *mNative.codePage, *mNative.files};
    std::unique_ptr<Practice> mPractice;
    RoundTrips mRoundTrips{*mNative.clock};
    std::unique_ptr<Transcript> mTranscript;  // outlives the ports, which make its last entry
    WatchedSerialPorts mPorts{RealPorts(), Listeners()};
    WatchedPump mPump;
    FlashSession mSession;
};

}  // namespace vantor
