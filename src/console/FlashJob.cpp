#include "console/FlashJob.hpp"

#include <algorithm>
#include <vector>

#include "console/ConsoleView.hpp"
#include "console/PortChoice.hpp"
#include "console/SeveralPorts.hpp"
#include "platform/Registry.hpp"
#include "support/Traps.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

constexpr std::uint32_t kLookMs = 300;  // between two looks for a port

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

/// The ports of a run with several: given, or for practice the first ones.
std::vector<std::string> PortsOf(const Options& options) {
    if (!options.practice) return options.ports;
    std::vector<std::string> ports;
    for (std::size_t i = 1; i <= options.practicePorts; ++i)
        ports.push_back("COM" + std::to_string(i));
    return ports;
}

}  // namespace

std::string ReadImage(const std::string& path, const Files& files, const StringTable& strings) {
    if (!files.Exists(path)) throw Refusal(strings, Str::ImageNotFound, path);
    std::string text;
    if (!Ignoring([&] { text = files.ReadAll(path); }))
        throw Refusal(strings, Str::ImageNotReadable, path);
    return text;
}

ExitStatus TellPendingError(NativePlatform& native, const JsonEvents& events, bool json) {
    const RuntimeError error = PendingError();
    // User errors are error 5 with a sentence as the description.
    const bool usage = error.Is(ErrorNumber::InvalidCall);
    const ExitStatus status = usage ? ExitStatus::Usage : ExitStatus::UpdateFailure;
    native.console->WriteError("tsflash: " + error.Description() + "\n");
    if (usage) native.console->WriteError(native.strings->Text(Str::TryHelp) + "\n");
    if (json) WriteRefusal(events, status, error.Description());
    return status;
}

ExitStatus FlashJob::Run() {
    CheckBefore();
    if (mOptions.Several()) return RunSeveral();
    if (mOptions.repeat) return RunRepeatedly();
    return StatusOf(FlashOne(mOptions.wait.has_value(), WaitLimit()).end);
}

void FlashJob::CheckBefore() {
    if (!mOptions.log.empty() && mNative.files->SameFile(mOptions.log, mOptions.image))
        throw Refusal(mStrings, Str::TranscriptIsImage, mOptions.log);
    mImage = ReadImage(mOptions.image, *mNative.files, mStrings);
    mReport = CheckImage(mImage);
    CheckSettings(*mNative.registry, mStrings);
    if (mOptions.expect.value_or(mReport.sha256) != mReport.sha256)
        throw Refusal(mStrings, Str::ImageChanged, mOptions.image);
    CheckImageToSend();
    if (mOptions.json && !mOptions.yes) throw Refusal(mStrings, Str::JsonNeedsYes);
    if (!mOptions.yes && !mNative.console->InputIsTerminal())
        throw Refusal(mStrings, Str::NoTerminalForQuestion);
    CheckRecord();
}

/// Rejects an image without lines to send, and with --strict a suspicious one.
void FlashJob::CheckImageToSend() {
    if (mReport.lines == mReport.blankLines)
        throw Refusal(mStrings, Str::ImageHasNoLine, mOptions.image);
    const bool refused = mOptions.strict && !mReport.findings.empty();
    if (mOptions.json) {
        // The processes of several ports write them themselves, each with its port.
        if (refused || !mOptions.Several()) WriteFindings(mEvents, mReport, mStrings);
    } else {
        for (const ImageFinding& finding : mReport.findings)
            mNative.console->WriteError(
                Filled(mStrings.Text(Str::Suspicious), Described(finding, mStrings)) + "\n");
    }
    if (refused) throw Refusal(mStrings, Str::ImageRefused, mOptions.image);
}

/// An unwritable record is refused before anything is sent.
void FlashJob::CheckRecord() {
    const std::string& record = mOptions.record;
    if (record.empty()) return;
    const auto isOther = [&] {
        return record == mOptions.log || mNative.files->SameFile(record, mOptions.image) ||
               mNative.files->SameFile(record, mOptions.log);
    };
    if (!isOther() && !Ignoring([&] { mNative.sharedFiles->Append(record, RecordHeader(), {}); }))
        throw Refusal(mStrings, Str::RecordNotWritable, record);
    // Two names of a file that is missing show only now that they are the same.
    if (isOther()) throw Refusal(mStrings, Str::RecordIsImage, record);
}

ExitStatus FlashJob::RunSeveral() {
    const std::vector<std::string> ports = PortsOf(mOptions);
    std::vector<std::string> names;
    for (const std::string& port : ports) {
        const std::vector<SerialPortInfo> present = mNative.ports->List();
        const auto chosen = ChosenPort(present, port, mStrings);
        if (!chosen && !mOptions.wait) throw UnknownPort(present, port, mStrings);
        const std::string name =
            mOptions.practice ? port : mNative.ports->NameOf(chosen.value_or(port));
        if (std::ranges::find(names, name) != names.end())
            throw Refusal(mStrings, Str::PortNamedTwice, port);
        names.push_back(name);
    }
    if (mOptions.practice && !mOptions.quiet && !mOptions.json)
        mNative.console->Write(mStrings.Text(Str::PracticeNotice) + "\n");
    if (!mOptions.yes) {
        ProgressLine progress(*mNative.console, *mNative.clock, mStrings);
        ConsoleView view(*mNative.console, mStrings, progress, mOptions);
        if (!view.Confirm(FlashSession::Question(mStrings))) return ExitStatus::Aborted;
    }
    Options each = mOptions;
    each.expect = mReport.sha256;
    return FlashSeveral(mNative, each, ports, mEvents);
}

ExitStatus FlashJob::RunRepeatedly() {
    std::uint64_t done = 0;
    std::uint64_t failed = 0;
    ExitStatus status = ExitStatus::Done;
    for (bool stopped = false; !stopped;) {
        const bool first = done + failed == 0;
        Unit unit;
        ExitStatus ended = ExitStatus::Done;
        try {
            unit = FlashOne(!first || mOptions.wait, first ? WaitLimit() : Limit());
            ended = StatusOf(unit.end);
        } catch (...) {
            if (first) throw;
            // The results of those before it still count.
            ended = TellPendingError(mNative, mEvents, mOptions.json);
            unit.stopped = true;
        }
        stopped = unit.stopped;
        // The interrupt key while it waited for a next one: no unit was begun.
        if (stopped && unit.end.outcome == FlashOutcome::Aborted && unit.end.ms == 0) {
            if (first) status = ExitStatus::Aborted;
            break;
        }
        ++(ended == ExitStatus::Done ? done : failed);
        status = Worse(status, ended);
    }
    if (mOptions.json)
        WriteSummary(mEvents, static_cast<std::int64_t>(done), static_cast<std::int64_t>(failed),
                     status);
    else
        mNative.console->Write(Filled(mStrings.Text(Str::RepeatSummary), std::to_string(done),
                                      std::to_string(failed)) +
                               "\n");
    return status;
}

FlashJob::Unit FlashJob::FlashOne(bool wait, Limit limit) {
    Unit unit;
    const std::uint32_t start = mNative.clock->Milliseconds();
    const std::optional<Options> options = WithPort(wait, limit, unit);
    const std::uint64_t waitedMs = mNative.clock->Milliseconds() - start;
    if (limit) limit = *limit - std::min(*limit, waitedMs);
    if (options) return FlashAt(*options, wait, limit);
    Conclude(FactsAt(*mOptions.port), unit);
    return unit;
}

std::optional<Options> FlashJob::WithPort(bool wait, Limit limit, Unit& unit) {
    Options options = mOptions;
    if (!options.port || options.practice) return options;
    const std::uint32_t start = mNative.clock->Milliseconds();
    for (bool shown = false;; shown = true) {
        const std::vector<SerialPortInfo> present = mNative.ports->List();
        const auto chosen = ChosenPort(present, *options.port, mStrings);
        if (chosen) {
            options.port = chosen;
            return options;
        }
        if (!wait) throw UnknownPort(present, *options.port, mStrings);
        if (!shown)
            ShowWaiting("waiting-for-port",
                        Filled(mStrings.Text(Str::WaitingForPort), *options.port));
        mNative.clock->Sleep(kLookMs);
        unit.stopped = WaitMustEnd(*mNative.console);
        unit.end.outcome = unit.stopped ? FlashOutcome::Aborted : FlashOutcome::PortNotOpen;
        if (unit.stopped) return std::nullopt;
        if (limit && mNative.clock->Milliseconds() - start >= *limit) {
            unit.end.why = UnknownPort(present, *options.port, mStrings).Description();
            mNative.console->WriteError(unit.end.why + "\n");
            return std::nullopt;
        }
    }
}

FlashJob::Unit FlashJob::FlashAt(const Options& options, bool wait, Limit limit) {
    CheckSettings(*mNative.registry, mStrings);  // the file may have changed since the last one
    FlashRun run(mNative, options, mImage, options.json ? &mEvents : nullptr);
    const bool kept = options.json || !options.record.empty();
    SessionFacts facts = kept ? FactsAt(mOptions.port.value_or(run.PortName())) : SessionFacts();
    mEvents.SetPort(facts.port);
    if (kept) facts.adapter = run.AdapterSerial();
    if (options.json) WriteStart(mEvents, facts, run.Line(), mReport);
    Unit unit;
    const IndicatorWait::Result result = wait ? Await(run, limit) : IndicatorWait::Result::Ready;
    if (result == IndicatorWait::Result::Ready) {
        if (wait && kept) {  // it may have been long, for an adapter that was not there
            facts.start = Time();
            facts.adapter = run.AdapterSerial();
        }
        unit.end = run.Flash();
    } else {
        EndOfWait(result, unit);
    }
    Conclude(facts, unit);
    if (options.repeat && !unit.stopped) unit.stopped = !run.AwaitGone();
    return unit;
}

IndicatorWait::Result FlashJob::Await(FlashRun& run, Limit limit) {
    return run.AwaitIndicator(limit, [&](IndicatorWait::Stage stage) {
        if (stage == IndicatorWait::Stage::Port)
            ShowWaiting("waiting-for-port", Filled(mStrings.Text(Str::WaitingForPort),
                                                   mOptions.port.value_or(run.PortName())));
        else
            ShowWaiting("waiting-for-indicator", mStrings.Text(Str::WaitingForIndicator));
    });
}

void FlashJob::EndOfWait(IndicatorWait::Result result, Unit& unit) {
    unit.stopped = result == IndicatorWait::Result::Interrupted;
    if (unit.stopped) {
        unit.end.outcome = FlashOutcome::Aborted;
        return;
    }
    unit.end.outcome = result == IndicatorWait::Result::NoPort ? FlashOutcome::PortNotOpen
                                                               : FlashOutcome::NotInBootMonitor;
    unit.end.why = mStrings.Text(Str::WaitEnded);
    mNative.console->WriteError(unit.end.why + "\n");
}

std::string FlashJob::Time() const {
    return IsoTime(mNative.clock->Now(), mNative.machine->UtcOffsetMinutes());
}

SessionFacts FlashJob::FactsAt(const std::string& port) const {
    return {.start = Time(),
            .host = mNative.machine->HostName(),
            .user = mNative.machine->UserName(),
            .port = port,
            .adapter = {},
            .image = std::string(FileNameOf(mOptions.image)),
            .note = mOptions.note,
            .practice = mOptions.practice};
}

/// The update has happened: a record that fails now must not hide its result.
void FlashJob::Conclude(const SessionFacts& facts, Unit& unit) {
    SessionEnd& end = unit.end;
    const std::string& record = mOptions.record;
    if (!record.empty() && !unit.stopped && !Ignoring([&] {
            mNative.sharedFiles->Append(record, RecordHeader(), RecordLine(facts, mReport, end));
        })) {
        end.recordLost = true;
        end.why = Filled(mStrings.Text(Str::RecordNotWritable), record);
        mNative.console->WriteError(end.why + "\n");
    }
    if (mOptions.json) WriteEnd(mEvents, end);
    if (mOptions.repeat && !unit.stopped) TellEnd(end);
}

void FlashJob::ShowWaiting(const char* stage, const std::string& text) {
    if (mOptions.json)
        mEvents.Write(mEvents.Begin("stage").Text("stage", stage).Text("text", text));
    else if (!mOptions.quiet)
        mNative.console->Write(text + "\n");
}

void FlashJob::TellEnd(const SessionEnd& end) {
    const std::string result = OutcomeText(CodeOf(end.outcome), StatusOf(end), mStrings);
    if (!mOptions.json)
        mNative.console->Write(
            Filled(mStrings.Text(Str::UnitEnded), std::to_string(++mUnits), result) + "\n");
    ShowWaiting("waiting-for-next", mStrings.Text(Str::NextUnit));
    if (mNative.console->OutputIsTerminal()) mNative.console->WriteError("\a");
}

FlashJob::Limit FlashJob::WaitLimit() const {
    constexpr std::uint64_t kMsPerSecond = 1000;
    const auto seconds = ParseInteger(mOptions.wait.value_or("0")).value_or(0);
    if (seconds == 0) return std::nullopt;
    return static_cast<std::uint64_t>(seconds) * kMsPerSecond;
}

}  // namespace vantor
