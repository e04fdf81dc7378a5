#include "console/TsFlash.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "app/base/AppInfo.hpp"
#include "console/FlashRun.hpp"
#include "console/JsonView.hpp"
#include "console/Options.hpp"
#include "console/SessionReport.hpp"
#include "console/image/ImageCheck.hpp"
#include "platform/Registry.hpp"
#include "support/Traps.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

std::string Version() {
    return "tsflash " + ProgramVersion() + " (" + AppInfo{}.title + ")\n";
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

ExitStatus Check(NativePlatform& native, const Options& options, const JsonEvents& events) {
    const ImageReport report = CheckImage(ReadImage(options.image, *native.files, *native.strings));
    if (options.json) {
        WriteCheck(events, std::string(FileNameOf(options.image)), report);
        WriteFindings(events, report, *native.strings);
    } else {
        native.console->Write(Described(report, options.image, *native.strings));
    }
    return report.findings.empty() ? ExitStatus::Done : ExitStatus::Usage;
}

/// Rejects an image without lines to send, and with --strict a suspicious one.
void CheckBeforeFlash(NativePlatform& native, const Options& options, const ImageReport& report,
                      const JsonEvents& events) {
    const StringTable& strings = *native.strings;
    if (report.lines == report.blankLines)
        throw Refusal(strings, Str::ImageHasNoLine, options.image);
    if (options.json) {
        WriteFindings(events, report, strings);
    } else {
        for (const ImageFinding& finding : report.findings)
            native.console->WriteError(
                Filled(strings.Text(Str::Suspicious), Described(finding, strings)) + "\n");
    }
    if (options.strict && !report.findings.empty())
        throw Refusal(strings, Str::ImageRefused, options.image);
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

/// An unwritable record is refused before anything is sent.
void CheckRecord(NativePlatform& native, const Options& options) {
    if (options.record.empty()) return;
    const StringTable& strings = *native.strings;
    if (options.record == options.log || native.files->SameFile(options.record, options.image) ||
        native.files->SameFile(options.record, options.log))
        throw Refusal(strings, Str::RecordIsImage, options.record);
    if (!Ignoring([&] { native.sharedFiles->Append(options.record, RecordHeader(), {}); }))
        throw Refusal(strings, Str::RecordNotWritable, options.record);
}

SessionFacts FactsOf(NativePlatform& native, const Options& options, const FlashRun& run) {
    return {.start = IsoTime(native.clock->Now(), native.machine->UtcOffsetMinutes()),
            .host = native.machine->HostName(),
            .user = native.machine->UserName(),
            .port = options.port.value_or(run.PortName()),
            .adapter = run.AdapterSerial(),
            .image = std::string(FileNameOf(options.image)),
            .note = options.note,
            .practice = options.practice};
}

ExitStatus Flash(NativePlatform& native, const Options& options, const std::string& image,
                 const ImageReport& report, JsonEvents& events) {
    FlashRun run(native, options, image, options.json ? &events : nullptr);
    const bool kept = options.json || !options.record.empty();
    const SessionFacts facts = kept ? FactsOf(native, options, run) : SessionFacts();
    events.SetPort(facts.port);
    if (options.json) WriteStart(events, facts, run.Line(), report);
    const SessionEnd end = run.Flash();
    // The update has happened: a record that fails now must not hide its result.
    const bool recorded = options.record.empty() || Ignoring([&] {
                              native.sharedFiles->Append(options.record, RecordHeader(),
                                                         RecordLine(facts, report, end));
                          });
    if (!recorded)
        native.console->WriteError(
            Filled(native.strings->Text(Str::RecordNotWritable), options.record) + "\n");
    if (options.json) WriteEnd(events, end);
    const ExitStatus status = StatusOf(end.outcome);
    return recorded || status != ExitStatus::Done ? status : ExitStatus::UpdateFailure;
}

ExitStatus CheckAndFlash(NativePlatform& native, const Options& options, JsonEvents& events) {
    const StringTable& strings = *native.strings;
    if (!options.log.empty() && native.files->SameFile(options.log, options.image))
        throw Refusal(strings, Str::TranscriptIsImage, options.log);
    const std::string image = ReadImage(options.image, *native.files, strings);
    const ImageReport report = CheckImage(image);
    CheckSettings(*native.registry, strings);
    CheckBeforeFlash(native, options, report, events);
    if (options.json && !options.yes) throw Refusal(strings, Str::JsonNeedsYes);
    if (!options.yes && !native.console->InputIsTerminal())
        throw Refusal(strings, Str::NoTerminalForQuestion);
    CheckRecord(native, options);
    return Flash(native, options, image, report, events);
}

ExitStatus Act(NativePlatform& native, const Options& options, JsonEvents& events) {
    const StringTable& strings = *native.strings;
    switch (options.action) {
        case Action::Help:
            native.console->Write(HelpText(strings));
            break;
        case Action::Version:
            native.console->Write(Version());
            break;
        case Action::Check:
            return Check(native, options, events);
        case Action::ListPorts:
            native.console->Write(PortList(*native.ports, strings));
            break;
        case Action::Flash:
            return CheckAndFlash(native, options, events);
    }
    return ExitStatus::Done;
}

}  // namespace

ExitStatus RunTsFlash(NativePlatform& native) {
    const StringTable& strings = *native.strings;
    const std::vector<std::string>& arguments = native.process->Arguments();
    // Also when the arguments cannot be parsed.
    const bool json = std::ranges::find(arguments, "--json") != arguments.end();
    JsonEvents events(*native.console, *native.clock, {});
    try {
        const Options options = ParseOptions(arguments, strings);
        if (options.port) events.SetPort(*options.port);
        return Act(native, options, events);
    } catch (...) {
        const RuntimeError error = PendingError();
        // User errors are error 5 with a sentence as the description.
        const bool usage = error.Is(ErrorNumber::InvalidCall);
        const ExitStatus status = usage ? ExitStatus::Usage : ExitStatus::UpdateFailure;
        native.console->WriteError("tsflash: " + error.Description() + "\n");
        if (usage) native.console->WriteError(strings.Text(Str::TryHelp) + "\n");
        if (json) WriteRefusal(events, status, error.Description());
        return status;
    }
}

}  // namespace vantor
