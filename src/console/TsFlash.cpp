#include "console/TsFlash.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/base/AppInfo.hpp"
#include "app/base/CErrHandler.hpp"
#include "console/ConsoleView.hpp"
#include "console/Options.hpp"
#include "console/Practice.hpp"
#include "console/RoundTrips.hpp"
#include "console/Traffic.hpp"
#include "console/Transcript.hpp"
#include "console/WatchedPump.hpp"
#include "console/image/ImageCheck.hpp"
#include "flash/FlashSession.hpp"
#include "platform/Registry.hpp"
#include "platform/headless/HeadlessFiles.hpp"
#include "settings/CAppSettings.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

std::string Version() {
    const AppInfo app;
    return "tsflash " + std::to_string(app.major) + "." + TwoDigits(app.minor) + "." +
           std::to_string(app.revision) + " (" + app.title + ")\n";
}

std::string PortList(const SerialPorts& ports, const StringTable& strings) {
    std::string text;
    for (const SerialPortInfo& port : ports.List())
        text += FixedWidth(port.name, 7) + port.device +
                (port.description.empty() ? "" : "  " + port.description) + "\n";
    return text.empty() ? strings.Text(Str::NoPortFound) + "\n" : text;
}

std::string ReadImage(const std::string& path, const Files& files, const StringTable& strings) {
    if (!files.Exists(path)) throw Refusal(strings, Str::ImageNotFound, path);
    std::string text;
    if (!Ignoring([&] { text = files.ReadAll(path); }))
        throw Refusal(strings, Str::ImageNotReadable, path);
    return text;
}

ExitStatus Check(NativePlatform& native, const Options& options) {
    const ImageReport report = CheckImage(ReadImage(options.image, *native.files, *native.strings));
    native.console->Write(Described(report, options.image, *native.strings));
    return report.findings.empty() ? ExitStatus::Done : ExitStatus::Usage;
}

/// Rejects an image without lines to send, and with --strict a suspicious one.
void CheckBeforeFlash(NativePlatform& native, const Options& options, const ImageReport& report) {
    const StringTable& strings = *native.strings;
    if (report.lines == report.blankLines)
        throw Refusal(strings, Str::ImageHasNoLine, options.image);
    for (const ImageFinding& finding : report.findings)
        native.console->WriteError(
            Filled(strings.Text(Str::Suspicious), Described(finding, strings)) + "\n");
    if (options.strict && !report.findings.empty())
        throw Refusal(strings, Str::ImageRefused, options.image);
}

/// Why the port did not open, as a sentence; empty when unknown.
std::string OpenFailure(const SerialControl& comm, const StringTable& strings) {
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

/// Falling back to defaults for unreadable settings could select the wrong port.
void CheckSettings(Registry& registry, const StringTable& strings) {
    try {
        RegistryKey key = 0;
        if (registry.OpenKey(RegistryRoot::CurrentUser, "SOFTWARE", kRegistryQueryValue, key) ==
            kRegistrySuccess)
            registry.CloseKey(key);
    } catch (const UnreadableStore& store) {
        const std::size_t line = store.DamagedLine();
        throw Refusal(strings, line == 0 ? Str::SettingsFileUnreadable : Str::SettingsFileDamaged,
                      store.File(), std::to_string(line));
    }
}

ExitStatus StatusOf(FlashOutcome outcome) {
    switch (outcome) {
        case FlashOutcome::Done:
            return ExitStatus::Done;
        case FlashOutcome::PortNotOpen:
            return ExitStatus::PortNotOpen;
        case FlashOutcome::NotInBootMonitor:
        case FlashOutcome::SystemLoadRefused:
            return ExitStatus::NotReady;
        case FlashOutcome::VerifyFailed:
            return ExitStatus::VerifyFailed;
        case FlashOutcome::Declined:
        case FlashOutcome::Aborted:
            return ExitStatus::Aborted;
        case FlashOutcome::LineRefused:
        case FlashOutcome::NothingAccepted:
        case FlashOutcome::AwaitingVerdict:
        case FlashOutcome::NoVerdict:
        case FlashOutcome::None:  // an unexpected error, reported by the error handler
            break;
    }
    return ExitStatus::UpdateFailure;
}

/// Installs the error handler as the sink of all traps during its lifetime.
class SinkScope {
public:
    explicit SinkScope(CErrHandler& errors, const Folders& folders) {
        errors.Title = AppInfo{}.title;
        errors.Destination(ErrorLogPath(folders));
        errors.DisplayMsgOnError = true;
        SetErrorSink(&errors);
    }
    ~SinkScope() { SetErrorSink(nullptr); }
    SinkScope(const SinkScope&) = delete;
    SinkScope& operator=(const SinkScope&) = delete;
};

/// One flash with everything that it needs; members are in construction order.
class Run {
public:
    Run(NativePlatform& native, const Options& options, const std::string& image);
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    ExitStatus Flash();

private:
    void LoadSettings();
    void Override(const std::optional<std::string>& value, const char* option,
                  void (CAppSettings::*set)(const std::string&));
    std::unique_ptr<Practice> MakePractice(const std::string& image);
    std::unique_ptr<Transcript> MakeTranscript();
    std::vector<TrafficListener*> Listeners();
    SerialPorts& RealPorts() { return mPractice ? mPractice->Ports() : *mNative.ports; }
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
    ConsoleView mView{*mNative.console, *mNative.strings, mProgress, mOptions};
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

Run::Run(NativePlatform& native, const Options& options, const std::string& image)
    : mNative(native),
      mOptions(options),
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

ExitStatus Run::Flash() {
    mSession.doFlash();
    mProgress.Finish();
    const FlashOutcome outcome = mSession.Outcome();
    if (outcome == FlashOutcome::PortNotOpen)
        if (const std::string why = OpenFailure(mSession.Port(), *mNative.strings); !why.empty())
            mNative.console->WriteError(why + "\n");
    return StatusOf(outcome);
}

// Command-line values go through the setters of the settings, in an edit that is never applied,
// so nothing is stored.
void Run::LoadSettings() {
    Trapped("tsflash.LoadSettings", [this] { mSettings.Initialize(); });
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

void Run::Override(const std::optional<std::string>& value, const char* option,
                   void (CAppSettings::*set)(const std::string&)) {
    if (!value) return;
    if (!Ignoring([&] { (mSettings.*set)(*value); }))
        throw Refusal(*mNative.strings, Str::OptionRefusesValue, *value, option);
}

std::unique_ptr<Practice> Run::MakePractice(const std::string& image) {
    if (!mOptions.practice) return nullptr;
    auto practice = std::make_unique<Practice>(*mNative.clock, mSettings, mOptions.faults, image);
    if (!mOptions.quiet) mNative.console->Write(mNative.strings->Text(Str::PracticeNotice) + "\n");
    return practice;
}

std::unique_ptr<Transcript> Run::MakeTranscript() {
    if (mOptions.log.empty()) return nullptr;
    std::unique_ptr<Transcript> transcript;
    if (!Ignoring([&] {
            transcript = std::make_unique<Transcript>(mOptions.log, *mNative.clock, mRoundTrips);
        }))
        throw Refusal(*mNative.strings, Str::TranscriptNotWritable, mOptions.log);
    return transcript;
}

std::vector<TrafficListener*> Run::Listeners() {
    std::vector<TrafficListener*> listeners = {&mRoundTrips};
    if (mTranscript) listeners.push_back(mTranscript.get());
    return listeners;
}

void Run::Watch() {
    if (mNative.console->TakeInterrupt()) Interrupted();
    if (!mPractice) HintAtLateReplies();  // practice has no adapter
    // The user cannot close this view, so a wait that only a close request ends is ended here.
    if (mSession.Outcome() == FlashOutcome::NothingAccepted && !mSession.CloseRequested()) {
        mProgress.Finish();
        mNative.console->WriteError(mNative.strings->Text(Str::NoLineAccepted) + "\n");
        mSession.RequestClose();
    }
}

// Shown under --quiet too: this reports a configuration fault, not progress.
void Run::HintAtLateReplies() {
    const std::optional<std::int64_t> latenessMs = mRoundTrips.TakeLateness();
    if (!latenessMs) return;
    mProgress.Break();
    mNative.console->WriteError(
        Filled(mNative.strings->Text(Str::LateReplies), std::to_string(*latenessMs)) + "\n");
}

// The session polls the abort flag only until it has an outcome. After that the view's state is
// meaningless: blank lines at the end of the image leave the abort allowed.
bool Run::CanAbort() const {
    return mSession.Outcome() == FlashOutcome::None && mView.AbortAllowed();
}

void Run::Interrupted() {
    mProgress.Finish();
    const bool honoured = CanAbort();
    Str answer = Str::NothingToAbort;
    if (honoured)
        answer = Str::Aborting;
    else if (mSession.Flashing())
        answer = Str::TooLateToAbort;
    mNative.console->WriteError(mNative.strings->Text(answer) + "\n");
    if (honoured) mSession.cmdFlashAbort_Click();
}

ExitStatus CheckAndFlash(NativePlatform& native, const Options& options) {
    const StringTable& strings = *native.strings;
    if (!options.log.empty() && native.files->SameFile(options.log, options.image))
        throw Refusal(strings, Str::TranscriptIsImage, options.log);
    const std::string image = ReadImage(options.image, *native.files, strings);
    const ImageReport report = CheckImage(image);
    CheckSettings(*native.registry, strings);
    CheckBeforeFlash(native, options, report);
    if (!options.yes && !native.console->InputIsTerminal())
        throw Refusal(strings, Str::NoTerminalForQuestion);
    return Run(native, options, image).Flash();
}

}  // namespace

ExitStatus RunTsFlash(NativePlatform& native) {
    const StringTable& strings = *native.strings;
    try {
        const Options options = ParseOptions(native.process->Arguments(), strings);
        switch (options.action) {
            case Action::Help:
                native.console->Write(HelpText(strings));
                break;
            case Action::Version:
                native.console->Write(Version());
                break;
            case Action::Check:
                return Check(native, options);
            case Action::ListPorts:
                native.console->Write(PortList(*native.ports, strings));
                break;
            case Action::Flash:
                return CheckAndFlash(native, options);
        }
        return ExitStatus::Done;
    } catch (...) {
        const RuntimeError error = PendingError();
        native.console->WriteError("tsflash: " + error.Description() + "\n");
        // User errors are error 5 with a sentence as the description.
        if (!error.Is(ErrorNumber::InvalidCall)) return ExitStatus::UpdateFailure;
        native.console->WriteError(strings.Text(Str::TryHelp) + "\n");
        return ExitStatus::Usage;
    }
}

}  // namespace vantor
