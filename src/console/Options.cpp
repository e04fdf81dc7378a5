#include "console/Options.hpp"

#include <array>
#include <string_view>

#include "platform/StringTable.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

/// One option: the field that it sets.
struct OptionRow {
    std::string_view letter;  ///< "-p", empty when there is none
    std::string_view name;    ///< "--port"
    std::string_view value;   ///< name of its value in the help; empty: it takes none
    Str help;
    void (*apply)(Options&, const std::string& value);
};

constexpr std::array kOptions = {
    OptionRow{"-p", "--port", "PORT", Str::OptionPort,
              [](Options& o, const std::string& v) { o.port = v; }},
    OptionRow{"-b", "--baud", "N", Str::OptionBaud,
              [](Options& o, const std::string& v) { o.baud = v; }},
    OptionRow{"", "--parity", "P", Str::OptionParity,
              [](Options& o, const std::string& v) { o.parity = v; }},
    OptionRow{"", "--data-bits", "N", Str::OptionDataBits,
              [](Options& o, const std::string& v) { o.dataBits = v; }},
    OptionRow{"", "--stop-bits", "N", Str::OptionStopBits,
              [](Options& o, const std::string& v) { o.stopBits = v; }},
    OptionRow{"-y", "--yes", "", Str::OptionYes,
              [](Options& o, const std::string&) { o.yes = true; }},
    OptionRow{"-q", "--quiet", "", Str::OptionQuiet,
              [](Options& o, const std::string&) { o.quiet = true; }},
    OptionRow{"", "--log", "FILE", Str::OptionLog,
              [](Options& o, const std::string& v) { o.log = v; }},
    OptionRow{"", "--practice", "", Str::OptionPractice,
              [](Options& o, const std::string&) { o.practice = true; }},
    OptionRow{"", "--fault", "FAULT", Str::OptionFault,
              [](Options& o, const std::string& v) { o.faults.push_back(v); }},
    OptionRow{"", "--list-ports", "", Str::OptionListPorts,
              [](Options& o, const std::string&) { o.action = Action::ListPorts; }},
    OptionRow{"", "--version", "", Str::OptionVersion,
              [](Options& o, const std::string&) { o.action = Action::Version; }},
    OptionRow{"-h", "--help", "", Str::OptionHelp,
              [](Options& o, const std::string&) { o.action = Action::Help; }},
};

const OptionRow* FindOption(std::string_view name) {
    for (const OptionRow& row : kOptions)
        if (name == row.name || (!row.letter.empty() && name == row.letter)) return &row;
    return nullptr;
}

[[noreturn]] void Fail(const StringTable& strings, Str text, const std::string& first,
                       const std::string& second = {}) {
    throw RuntimeError(ErrorNumber::InvalidCall, Filled(strings.Text(text), first, second));
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
    if (!row) Fail(strings, Str::UnknownOption, argument);
    std::string value;
    if (equals != std::string::npos) {
        value = argument.substr(equals + 1);
        if (row->value.empty()) Fail(strings, Str::OptionRefusesValue, value, name);
    } else if (!row->value.empty()) {
        if (at + 1 == arguments.size()) Fail(strings, Str::OptionNeedsValue, name);
        value = arguments[++at];
    }
    row->apply(options, value);
}

void CheckTogether(const Options& options, const StringTable& strings) {
    if (options.action != Action::Flash) return;
    if (options.image.empty()) Fail(strings, Str::NameOneImage, {});
    if (!options.faults.empty() && !options.practice) Fail(strings, Str::FaultNeedsPractice, {});
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
            if (!options.image.empty()) Fail(strings, Str::NameOneImage, {});
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

}  // namespace vantor
