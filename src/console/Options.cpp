#include "console/Options.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include "console/OptionTable.hpp"
#include "console/PortChoice.hpp"
#include "platform/StringTable.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

// What options do.
template <auto Field>
void Store(Options& options, const std::string& value) {
    options.*Field = value;
}
template <bool Options::*Flag>
void Set(Options& options, const std::string&) {
    options.*Flag = true;
}
template <Action Chosen>
void Choose(Options& options, const std::string&) {
    options.action = Chosen;
}
void AddFault(Options& options, const std::string& value) {
    options.faults.push_back(value);
}

void AddPort(Options& options, const std::string& value) {
    options.port = IsComName(value) ? UpperCase(value) : value;
    options.ports.push_back(*options.port);
}
void Practise(Options& options, const std::string& value) {
    options.practice = true;
    options.practiceCount = value;
}

void Complete(Options& options, const std::string& value) {
    options.action = Action::Completion;
    options.completion = value;
}

struct GroupRow {
    Group group;
    Str title;
};
constexpr std::array kGroups = {
    GroupRow{Group::Line, Str::GroupLine}, GroupRow{Group::Update, Str::GroupUpdate},
    GroupRow{Group::Reports, Str::GroupReports}, GroupRow{Group::Information, Str::GroupOther}};

constexpr std::array kOptions = {
    OptionRow{Group::Line, "-p", "--port", "PORT", Str::OptionPort, AddPort, Completed::Ports},
    OptionRow{Group::Line, "-b", "--baud", "N", Str::OptionBaud, Store<&Options::baud>,
              Completed::Words, "300 600 1200 2400 4800 9600 19200 38400 57600 115200"},
    OptionRow{Group::Line, "", "--parity", "P", Str::OptionParity, Store<&Options::parity>,
              Completed::Words, "N O E"},
    OptionRow{Group::Line, "", "--data-bits", "N", Str::OptionDataBits, Store<&Options::dataBits>,
              Completed::Words, "7 8"},
    OptionRow{Group::Line, "", "--stop-bits", "N", Str::OptionStopBits, Store<&Options::stopBits>,
              Completed::Words, "1 2"},
    OptionRow{Group::Update, "-y", "--yes", "", Str::OptionYes, Set<&Options::yes>},
    OptionRow{Group::Update, "", "--strict", "", Str::OptionStrict, Set<&Options::strict>},
    OptionRow{Group::Update, "", "--wait", "SECONDS", Str::OptionWait, Store<&Options::wait>},
    OptionRow{Group::Update, "", "--repeat", "", Str::OptionRepeat, Set<&Options::repeat>},
    OptionRow{Group::Update, "", "--practice", "", Str::OptionPractice, Practise},
    OptionRow{Group::Update, "", "--fault", "FAULT", Str::OptionFault, AddFault},
    OptionRow{Group::Reports, "-q", "--quiet", "", Str::OptionQuiet, Set<&Options::quiet>},
    OptionRow{Group::Reports, "", "--log", "FILE", Str::OptionLog, Store<&Options::log>,
              Completed::Files},
    OptionRow{Group::Reports, "", "--record", "FILE", Str::OptionRecord, Store<&Options::record>,
              Completed::Files},
    OptionRow{Group::Reports, "", "--note", "TEXT", Str::OptionNote, Store<&Options::note>},
    OptionRow{Group::Reports, "", "--json", "", Str::OptionJson, Set<&Options::json>},
    OptionRow{Group::Information, "", "--check", "", Str::OptionCheck, Choose<Action::Check>},
    OptionRow{Group::Information, "", "--list-ports", "", Str::OptionListPorts,
              Choose<Action::ListPorts>},
    OptionRow{Group::Information, "", "--completion", "SHELL", Str::OptionCompletion, Complete,
              Completed::Words, "bash zsh"},
    OptionRow{Group::Information, "", "--version", "", Str::OptionVersion, Choose<Action::Version>},
    OptionRow{Group::Information, "-h", "--help", "", Str::OptionHelp, Choose<Action::Help>},
};

/// Only for the processes of several ports: neither help nor completion shows it.
constexpr OptionRow kExpect = {Group::Update, "", "--expect",
                               "SHA256",      {}, Store<&Options::expect>};

const OptionRow* FindOption(std::string_view name) {
    if (name == kExpect.name) return &kExpect;
    for (const OptionRow& row : kOptions)
        if (name == row.name || (!row.letter.empty() && name == row.letter)) return &row;
    return nullptr;
}

/// Applies the option at `at` and advances `at` to the last argument that belongs to it.
void ApplyOption(Options& options, const std::vector<std::string>& arguments, std::size_t& at,
                 const StringTable& strings) {
    const std::string& argument = arguments[at];
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    const std::string name = argument.substr(0, equals);
    const OptionRow* const row = FindOption(name);
    if (!row) throw Refusal(strings, Str::UnknownOption, argument);
    std::string value;
    if (equals != std::string::npos) {
        value = argument.substr(equals + 1);
        if (row->value.empty() && row->apply != Practise)
            throw Refusal(strings, Str::OptionRefusesValue, value, name);
    } else if (!row->value.empty()) {
        if (at + 1 == arguments.size()) throw Refusal(strings, Str::OptionNeedsValue, name);
        value = arguments[++at];
    }
    // An empty name, as of a variable that is not set, would silently mean no file.
    if (value.empty() && row->completion == Completed::Files)
        throw Refusal(strings, Str::OptionNeedsValue, name);
    row->apply(options, value);
}

/// The line of an option in the help, continued below where it is longer than the screen.
std::string HelpOf(const OptionRow& row, std::string_view help) {
    constexpr std::size_t kScreen = 79;
    constexpr std::size_t kColumn = 26;
    std::string line = "  ";
    line.append(row.letter.empty() ? "    " : std::string(row.letter) + ", ").append(row.name);
    if (!row.value.empty()) line.append(" ").append(row.value);
    line.append(kColumn - std::min(kColumn - 1, line.size()), ' ');
    std::string text;
    while (!help.empty()) {
        const std::string_view word = help.substr(0, help.find(' '));
        help.remove_prefix(std::min(word.size() + 1, help.size()));
        if (CharacterCount(line) + 1 + CharacterCount(word) > kScreen) {
            text += line + "\n";
            line.assign(kColumn, ' ');
        }
        if (!line.ends_with(' ')) line += ' ';
        line += word;
    }
    return text + line + "\n";
}

void CheckPractice(Options& options, const StringTable& strings) {
    constexpr std::int64_t kMostPorts = 32;
    if (options.practiceCount.empty()) return;
    const auto count = ParseInteger(options.practiceCount);
    if (!count || *count < 1 || *count > kMostPorts)
        throw Refusal(strings, Str::OptionRefusesValue, options.practiceCount, "--practice");
    if (!options.ports.empty()) throw Refusal(strings, Str::PracticeTakesNoPort);
    options.practicePorts = static_cast<std::size_t>(*count);
}

void CheckWait(const Options& options, const StringTable& strings) {
    constexpr std::int64_t kLongest = 1'000'000;
    if (!options.wait) return;
    const auto seconds = ParseInteger(*options.wait);
    if (!seconds || *seconds < 0 || *seconds > kLongest)
        throw Refusal(strings, Str::OptionRefusesValue, *options.wait, "--wait");
}

void CheckTogether(Options& options, const StringTable& strings) {
    if (options.action != Action::Flash && options.action != Action::Check) return;
    if (options.image.empty()) throw Refusal(strings, Str::NameOneImage);
    if (!options.faults.empty() && !options.practice)
        throw Refusal(strings, Str::FaultNeedsPractice);
    if (!options.note.empty() && options.record.empty())
        throw Refusal(strings, Str::NoteNeedsRecord);
    CheckPractice(options, strings);
    CheckWait(options, strings);
    if (!options.Several()) return;
    if (!options.log.empty()) throw Refusal(strings, Str::NotWithSeveralPorts, "--log");
    if (options.repeat) throw Refusal(strings, Str::NotWithSeveralPorts, "--repeat");
}

}  // namespace

std::span<const OptionRow> OptionTable() {
    return kOptions;
}

Options ParseOptions(const std::vector<std::string>& arguments, const StringTable& strings) {
    Options options;
    bool optionsEnded = false;
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const std::string& argument = arguments[at];
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
        } else if (!optionsEnded && argument.size() > 1 && argument.starts_with('-')) {
            ApplyOption(options, arguments, at, strings);
        } else {
            if (!options.image.empty()) throw Refusal(strings, Str::NameOneImage);
            options.image = argument;
        }
    }
    CheckTogether(options, strings);
    return options;
}

std::string HelpText(const StringTable& strings) {
    std::string text = strings.Text(Str::Usage) + "\n" + strings.Text(Str::UsagePurpose) + "\n";
    for (const GroupRow& group : kGroups) {
        text += "\n" + strings.Text(group.title) + "\n";
        for (const OptionRow& row : kOptions)
            if (row.group == group.group) text += HelpOf(row, strings.Text(row.help));
    }
    return text + "\n" + strings.Text(Str::DefaultsFromSettings) + "\n";
}

RuntimeError Refusal(const StringTable& strings, Str text, const std::string& first,
                     const std::string& second) {
    return RuntimeError(ErrorNumber::InvalidCall, Filled(strings.Text(text), first, second));
}

}  // namespace vantor
