#include "console/FlashRun.hpp"

#include "app/base/AppInfo.hpp"

namespace vantor {
namespace {

SessionView& Chosen(ConsoleView& console, std::optional<JsonView>& json, JsonEvents* events,
                    NativePlatform& native, const Options& options) {
    if (events == nullptr) return console;
    return json.emplace(*events, *native.console, options);
}

}  // namespace

FlashRun::SinkScope::SinkScope(CErrHandler& errors, const Folders& folders) {
    errors.Title = AppInfo{}.title;
    errors.Destination(std::string());  // without a folder for reports there are none
    Ignoring([&] { errors.Destination(ErrorLogPath(folders)); });
    errors.DisplayMsgOnError = true;
    SetErrorSink(&errors);
}

FlashRun::FlashRun(NativePlatform& native, const Options& options, const std::string& image,
                   JsonEvents* events)
    : mNative(native),
      mOptions(options),
      mView(Chosen(mConsoleView, mJsonView, events, native, options)),
      mPractice((LoadSettings(), MakePractice(image))),
      mTranscript(MakeTranscript()),
      mPump(mPractice ? mPractice->Pump() : *native.pump, [this] { Watch(); }),
      mSession(mView, mSettings,
               {.clock = *native.clock,
                .files = mFiles,
                .pump = mPump,
                .ports = mPorts,
                .strings = *native.strings}) {
    mFiles.Add(options.image, image);
}

SessionEnd FlashRun::Flash() {
    const std::uint32_t start = mNative.clock->Milliseconds();
    mSession.doFlash();
    mProgress.Finish();
    SessionEnd end{.outcome = mSession.Outcome(),
                   .why = OpenFailure(),
                   .counts = mRoundTrips.Counts(),
                   .ms = mNative.clock->Milliseconds() - start};
    if (end.outcome != FlashOutcome::PortNotOpen) end.why.clear();
    if (!end.why.empty()) mView.Tell({.code = "port-not-open", .text = end.why});
    return end;
}

ExitStatus StatusOf(const SessionEnd& end) {
    const ExitStatus status = StatusOf(end.outcome);
    return end.recordLost && status == ExitStatus::Done ? ExitStatus::UpdateFailure : status;
}

IndicatorWait FlashRun::Wait() {
    return {RealPorts(),    mPractice ? mPractice->Pump() : *mNative.pump,
            *mNative.clock, *mNative.console,
            PortName(),     Line()};
}

IndicatorWait::Result FlashRun::AwaitIndicator(
    std::optional<std::uint64_t> limitMs, const std::function<void(IndicatorWait::Stage)>& show) {
    return Wait().UntilReady(limitMs, show);
}

bool FlashRun::AwaitGone() {
    return Wait().UntilGone() == IndicatorWait::Result::Ready;
}

std::string FlashRun::Line() const {
    return mSettings.BaudRate() + "," + mSettings.Parity() + "," + mSettings.DataBits() + "," +
           mSettings.StopBits();
}

std::string FlashRun::AdapterSerial() const {
    if (mPractice) return {};
    for (const SerialPortInfo& port : mNative.ports->List())
        if (port.name == PortName()) return port.serialNumber;
    return {};
}

// As a sentence; empty when unknown.
std::string FlashRun::OpenFailure() const {
    const SerialControl& comm = mSession.Port();
    const StringTable& strings = *mNative.strings;
    const std::optional<PortOpenError>& error = comm.OpenError();
    if (!error) return {};
    const bool known = !error->Who().empty();
    switch (error->Why()) {
        case PortOpenError::Reason::NoSuchPort:
            return Filled(strings.Text(Str::NoSuchPort), error->Device());
        case PortOpenError::Reason::NotPermitted:
            return Filled(strings.Text(known ? Str::DeviceOfGroup : Str::PermissionDenied),
                          error->Device(), error->Who());
        case PortOpenError::Reason::InUse:
            return Filled(strings.Text(known ? Str::PortInUseBy : Str::PortInUse), error->Device(),
                          error->Who());
        case PortOpenError::Reason::LineRefused:
            return Filled(strings.Text(Str::PortRefusesLine), error->Device(), comm.settings);
    }
    return {};
}

// Command-line values go through the setters of the settings, in an edit that is never applied,
// so nothing is stored.
void FlashRun::LoadSettings() {
    try {
        mSettings.Initialize();
    } catch (const RuntimeError& error) {
        // The defaults of the values that were not read could be of another port.
        throw Refusal(*mNative.strings, Str::SettingsFileUnreadable, error.Description());
    }
    mSettings.BeginEdit();
    std::optional<std::string> port = mOptions.port;
    if (port && !mOptions.practice) port = mNative.ports->NameOf(*port);
    Override(port, "--port", &CAppSettings::CommPort);
    Override(mOptions.baud, "--baud", &CAppSettings::BaudRate);
    Override(mOptions.parity, "--parity", &CAppSettings::Parity);
    Override(mOptions.dataBits, "--data-bits", &CAppSettings::DataBits);
    // Every load gives "2", and no setter accepts it.
    if (mOptions.stopBits != mSettings.StopBits())
        Override(mOptions.stopBits, "--stop-bits", &CAppSettings::StopBits);
}

void FlashRun::Override(const std::optional<std::string>& value, const char* option,
                        void (CAppSettings::*set)(const std::string&)) {
    if (!value) return;
    if (!Ignoring([&] { (mSettings.*set)(*value); }))
        throw Refusal(*mNative.strings, Str::OptionRefusesValue, *value, option);
}

std::unique_ptr<Practice> FlashRun::MakePractice(const std::string& image) {
    if (!mOptions.practice) return nullptr;
    auto practice = std::make_unique<Practice>(*mNative.clock, mSettings, mOptions.faults, image);
    if (!mOptions.quiet && !mOptions.json)
        mNative.console->Write(mNative.strings->Text(Str::PracticeNotice) + "\n");
    return practice;
}

std::unique_ptr<Transcript> FlashRun::MakeTranscript() {
    if (mOptions.log.empty()) return nullptr;
    std::unique_ptr<Transcript> transcript;
    if (!Ignoring([&] {
            transcript = std::make_unique<Transcript>(mOptions.log, *mNative.files, *mNative.clock,
                                                      mRoundTrips);
        }))
        throw Refusal(*mNative.strings, Str::TranscriptNotWritable, mOptions.log);
    return transcript;
}

std::vector<TrafficListener*> FlashRun::Listeners() {
    std::vector<TrafficListener*> listeners = {&mRoundTrips};
    if (mJsonView) listeners.push_back(&*mJsonView);
    if (mTranscript) listeners.push_back(mTranscript.get());
    return listeners;
}

void FlashRun::Watch() {
    if (mNative.console->TakeInterrupt()) Interrupted();
    if (!mPractice) HintAtLateReplies();  // practice has no adapter
    // The user cannot close this view, so a wait that only a close request ends is ended here.
    if (mSession.Outcome() == FlashOutcome::NothingAccepted && !mSession.CloseRequested()) {
        mView.Tell(
            {.code = "no-line-accepted", .text = mNative.strings->Text(Str::NoLineAccepted)});
        mSession.RequestClose();
    }
}

// Shown under --quiet too: this reports a configuration fault, not progress.
void FlashRun::HintAtLateReplies() {
    const std::optional<std::int64_t> latenessMs = mRoundTrips.TakeLateness();
    if (!latenessMs) return;
    mView.Tell(
        {.code = "late-replies",
         .text = Filled(mNative.strings->Text(Str::LateReplies), std::to_string(*latenessMs)),
         .ms = latenessMs,
         .duringProgress = true});
}

// The session polls the abort flag only until it has an outcome. After that the view's state is
// meaningless: blank lines at the end of the image leave the abort allowed.
bool FlashRun::CanAbort() const {
    return mSession.Outcome() == FlashOutcome::None && mView.AbortAllowed();
}

void FlashRun::Interrupted() {
    const bool honoured = CanAbort();
    Str answer = Str::NothingToAbort;
    const char* code = "nothing-to-abort";
    if (honoured) {
        answer = Str::Aborting;
        code = "aborting";
    } else if (mSession.Flashing()) {
        answer = Str::TooLateToAbort;
        code = "too-late-to-abort";
    }
    mView.Tell({.code = code, .text = mNative.strings->Text(answer)});
    if (honoured) mSession.cmdFlashAbort_Click();
}

}  // namespace vantor
