#include "console/TsFlash.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "app/base/AppInfo.hpp"
#include "console/Completion.hpp"
#include "console/FlashJob.hpp"
#include "console/JsonView.hpp"
#include "console/Options.hpp"
#include "console/PortChoice.hpp"
#include "console/SessionReport.hpp"
#include "console/image/ImageCheck.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

std::string Version() {
    return "tsflash " + ProgramVersion() + " (" + AppInfo{}.title + ")\n";
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

void ListPorts(NativePlatform& native, const Options& options, const JsonEvents& events) {
    const std::vector<SerialPortInfo> ports = native.ports->List();
    if (options.json)
        WritePorts(events, ports);
    else
        native.console->Write(PortTable(ports, *native.strings));
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
            ListPorts(native, options, events);
            break;
        case Action::Completion: {
            const std::string script = CompletionFor(options.completion, strings);
            if (script.empty()) throw Refusal(strings, Str::BadCompletion);
            native.console->Write(script);
            break;
        }
        case Action::Flash:
            return FlashJob(native, options, events).Run();
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
        if (options.port && !options.Several()) events.SetPort(*options.port);
        return Act(native, options, events);
    } catch (...) {
        return TellPendingError(native, events, json);
    }
}

}  // namespace vantor
