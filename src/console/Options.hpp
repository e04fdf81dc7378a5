// The command line of tsflash.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "console/image/Filled.hpp"
#include "resources/texts/Str.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

class StringTable;

enum class Action : unsigned char { Flash, Check, ListPorts, Completion, Version, Help };

struct Options {
    Action action = Action::Flash;
    std::string image;
    // Overrides of stored settings, validated by the settings.
    std::optional<std::string> port;
    std::optional<std::string> baud;
    std::optional<std::string> parity;
    std::optional<std::string> dataBits;
    std::optional<std::string> stopBits;
    std::vector<std::string> ports;   ///< all that are given, COM names in capitals; `port` is last
    std::optional<std::string> wait;  ///< seconds; 0: without end
    bool repeat = false;
    std::string log;     ///< empty: no transcript
    std::string record;  ///< empty: no record
    std::string note;
    bool json = false;
    std::string completion;  ///< the shell
    bool yes = false;
    std::optional<std::string> expect;  ///< SHA-256 of the image that was checked and confirmed
    bool strict = false;                ///< refuse a suspicious image
    bool quiet = false;
    bool practice = false;
    std::string practiceCount;  ///< as given
    std::size_t practicePorts = 1;
    std::vector<std::string> faults;

    /// A process for each port is needed.
    bool Several() const { return practice ? practicePorts > 1 : ports.size() > 1; }
};

/// Parses the arguments after the program name. Option values are given as "--baud 9600",
/// "--baud=9600" or "-b 9600"; "--" ends the options. Raises RuntimeError 5 with a message in
/// the user's language for unknown arguments.
Options ParseOptions(const std::vector<std::string>& arguments, const StringTable& strings);

/// The help text.
std::string HelpText(const StringTable& strings);

/// An error that prevents a run: `text` with "%1" and "%2" replaced is shown, exit status 2.
RuntimeError Refusal(const StringTable& strings, Str text, const std::string& first = {},
                     const std::string& second = {});

}  // namespace vantor
