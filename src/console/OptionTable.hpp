// The table of the options of tsflash: for the parser, the help and the completion.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "console/Options.hpp"

namespace vantor {

enum class Group : std::uint8_t { Line, Update, Reports, Information };

/// By what a shell completes the value of an option.
enum class Completed : std::uint8_t { Words, Files, Ports };

struct OptionRow {
    Group group;
    std::string_view letter;  ///< "-p", empty when there is none
    std::string_view name;    ///< "--port"
    std::string_view value;   ///< name of its value in the help; empty: it takes none
    Str help;
    void (*apply)(Options&, const std::string& value);
    Completed completion = Completed::Words;
    std::string_view words = {};  ///< to choose from, separated by spaces
};

std::span<const OptionRow> OptionTable();

}  // namespace vantor
