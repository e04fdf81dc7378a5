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
    std::int32_t help;
    void (*apply)(Options&, const std::string& value);
};

constexpr std::array kOptions = {
    OptionRow{"-p", "--port", "PORT", 2002, [](Options& o, const std::string& v) { o.port = v; }},
    OptionRow{"-b", "--baud", "N", 2003, [](Options& o, const std::string& v) { o.baud = v; }},
    OptionRow{"", "--parity", "P", 2004, [](Options& o, const std::string& v) { o.parity = v; }},
    OptionRow{"", "--data-bits", "N", 2005,
              [](Options& o, const std::string& v) { o.dataBits = v; }},
    OptionRow{"", "--stop-bits", "N", 2006,
              [](Options& o, const std::string& v) { o.stopBits = v; }},
    OptionRow{"-y", "--yes", "", 2007, [](Options& o, const std::string&) { o.yes = true; }},
    OptionRow{"-q", "--quiet", "", 2008, [](Options& o, const std::string&) { o.quiet = true; }},
    OptionRow{"", "--log", "FILE", 2009, [](Options& o, const std::string& v) { o.log = v; }},
    OptionRow{"", "--practice", "", 2010,
              [](Options& o, const std::string&) { o.practice = true; }},
    OptionRow{"", "--fault", "FAULT", 2011,
              [](Options& o, const std::string& v) { o.faults.push_back(v); }},
    OptionRow{"", "--list-ports", "", 2012,
              [](Options& o, const std::string&) { o.action = Action::ListPorts; }},
    OptionRow{"", "--version", "", 2013,
              [](Options& o, const std::string&) { o.action = Action::Version; }},
    OptionRow{"-h", "--help", "", 2014,
              [](Options& o, const std::string&) { o.action = Action::Help; }},
};

const OptionRow* FindOption(std::string_view name) {
    for (const OptionRow& row : kOptions)
        if (name == row.name || (!row.letter.empty() && name == row.letter)) return &row;
    return nullptr;
}

[[noreturn]] void Fail(const StringTable& strings, std::int32_t text, const std::string& first,
                       const std::string& second = {}) {
    throw RuntimeError(ErrorNumber::InvalidCall,
                       Filled(strings.LoadResString(text), first, second));
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
    if (!row) Fail(strings, 2030, argument);
    std::string value;
    if (equals != std::string::npos) {
        value = argument.substr(equals + 1);
        if (row->value.empty()) Fail(strings, 2032, value, name);
    } else if (!row->value.empty()) {
        if (at + 1 == arguments.size()) Fail(strings, 2031, name);
        value = arguments[++at];
    }
    row->apply(options, value);
}

void CheckTogether(const Options& options, const StringTable& strings) {
    if (options.action != Action::Flash) return;
    if (options.image.empty()) Fail(strings, 2033, {});
    if (!options.faults.empty() && !options.practice) Fail(strings, 2046, {});
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
            if (!options.image.empty()) Fail(strings, 2033, {});
            options.image = argument;
        }
    }
    CheckTogether(options, strings);
    return options;
}

std::string HelpText(const StringTable& strings) {
    constexpr std::size_t kColumn = 24;
    std::string text = strings.LoadResString(2000) + "\n" + strings.LoadResString(2001) + "\n\n";
    for (const OptionRow& row : kOptions) {
        std::string left = "  ";
        left.append(row.letter.empty() ? "    " : std::string(row.letter) + ", ").append(row.name);
        if (!row.value.empty()) left.append(" ").append(row.value);
        if (left.size() < kColumn) left.append(kColumn - left.size(), ' ');
        text += left + "  " + strings.LoadResString(row.help) + "\n";
    }
    return text + "\n" + strings.LoadResString(2015) + "\n";
}

std::string Filled(std::string text, const std::string& first, const std::string& second) {
    // The second placeholder first: the first value may contain one itself.
    Replace(text, "%2", second);
    Replace(text, "%1", first);
    return text;
}

}  // namespace vantor
