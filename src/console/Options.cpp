#include "console/Options.hpp"

#include <array>
#include <string_view>

#include "platform/StringTable.hpp"

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

struct OptionRow {
    std::string_view letter;  ///< "-p", empty when there is none
    std::string_view name;    ///< "--port"
    std::string_view value;   ///< name of its value in the help; empty: it takes none
    Str help;
    void (*apply)(Options&, const std::string& value);
};

constexpr std::array kOptions = {
    OptionRow{"-p", "--port", "PORT", Str::OptionPort, Store<&Options::port>},
    OptionRow{"-b", "--baud", "N", Str::OptionBaud, Store<&Options::baud>},
    OptionRow{"", "--parity", "P", Str::OptionParity, Store<&Options::parity>},
    OptionRow{"", "--data-bits", "N", Str::OptionDataBits, Store<&Options::dataBits>},
    OptionRow{"", "--stop-bits", "N", Str::OptionStopBits, Store<&Options::stopBits>},
    OptionRow{"-y", "--yes", "", Str::OptionYes, Set<&Options::yes>},
    OptionRow{"-q", "--quiet", "", Str::OptionQuiet, Set<&Options::quiet>},
    OptionRow{"", "--log", "FILE", Str::OptionLog, Store<&Options::log>},
    OptionRow{"", "--practice", "", Str::OptionPractice, Set<&Options::practice>},
    OptionRow{"", "--fault", "FAULT", Str::OptionFault, AddFault},
    OptionRow{"", "--list-ports", "", Str::OptionListPorts, Choose<Action::ListPorts>},
    OptionRow{"", "--version", "", Str::OptionVersion, Choose<Action::Version>},
    OptionRow{"-h", "--help", "", Str::OptionHelp, Choose<Action::Help>},
};

const OptionRow* FindOption(std::string_view name) {
    for (const OptionRow& row : kOptions)
        if (name == row.name || (!row.letter.empty() && name == row.letter)) return &row;
    return nullptr;
}

void Replace(std::string& text, std::string_view mark, const std::string& value) {
    if (const std::size_t at = text.find(mark); at != std::string::npos)
        text.replace(at, mark.size(), value);
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
        if (row->value.empty()) throw Refusal(strings, Str::OptionRefusesValue, value, name);
    } else if (!row->value.empty()) {
        if (at + 1 == arguments.size()) throw Refusal(strings, Str::OptionNeedsValue, name);
        value = arguments[++at];
    }
    row->apply(options, value);
}

void CheckTogether(const Options& options, const StringTable& strings) {
    if (options.action != Action::Flash) return;
    if (options.image.empty()) throw Refusal(strings, Str::NameOneImage);
    if (!options.faults.empty() && !options.practice)
        throw Refusal(strings, Str::FaultNeedsPractice);
}

}  // namespace

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
    constexpr std::size_t kColumn = 24;
    std::string text = strings.Text(Str::Usage) + "\n" + strings.Text(Str::UsagePurpose) + "\n\n";
    for (const OptionRow& row : kOptions) {
        std::string left = "  ";
        left.append(row.letter.empty() ? "    " : std::string(row.letter) + ", ").append(row.name);
        if (!row.value.empty()) left.append(" ").append(row.value);
        if (left.size() < kColumn) left.append(kColumn - left.size(), ' ');
        text += left + "  " + strings.Text(row.help) + "\n";
    }
    return text + "\n" + strings.Text(Str::DefaultsFromSettings) + "\n";
}

std::string Filled(std::string text, const std::string& first, const std::string& second) {
    // The second placeholder first: the first value may contain one itself.
    Replace(text, "%2", second);
    Replace(text, "%1", first);
    return text;
}

RuntimeError Refusal(const StringTable& strings, Str text, const std::string& first,
                     const std::string& second) {
    return RuntimeError(ErrorNumber::InvalidCall, Filled(strings.Text(text), first, second));
}

}  // namespace vantor
