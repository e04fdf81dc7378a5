#include "console/Completion.hpp"

#include "console/OptionTable.hpp"
#include "platform/StringTable.hpp"

namespace vantor {
namespace {

constexpr const char* kPorts = "--list-ports 2>/dev/null | sed '1d;s/ .*//'";

std::string Words(const OptionRow& row) {
    return std::string(row.words);
}

/// "-p | --port", a pattern of the shell.
std::string Pattern(const OptionRow& row) {
    return (row.letter.empty() ? "" : std::string(row.letter) + " | ") + std::string(row.name);
}

std::string BashCase(const OptionRow& row) {
    const std::string start = "    " + Pattern(row) + ")\n        ";
    const std::string end = "\n        return ;;\n";
    const auto from = [](const std::string& words) {
        return "mapfile -t COMPREPLY < <(compgen -W " + words + " -- \"$word\")";
    };
    switch (row.completion) {
        case Completed::Files:
            return start + "compopt -o default" + end;
        case Completed::Ports:
            return start + from("\"$(\"$1\" " + std::string(kPorts) + ")\"") + end;
        case Completed::Words:
            return start + (row.words.empty() ? ":" : from("'" + Words(row) + "'")) + end;
    }
    return {};
}

std::string Bash() {
    std::string names;
    std::string cases;
    for (const OptionRow& row : OptionTable()) {
        names += (names.empty() ? "" : " ") + std::string(row.name);
        if (!row.value.empty()) cases += BashCase(row);
    }
    return "# Completion of tsflash for bash, written by tsflash --completion bash.\n"
           "_tsflash() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    COMPREPLY=()\n"
           "    # --baud=9600 is three words.\n"
           "    if [[ $word == = ]]; then\n"
           "        word=\n"
           "    elif [[ $before == = ]]; then\n"
           "        before=${COMP_WORDS[COMP_CWORD - 2]}\n"
           "    fi\n"
           "    case $before in\n" +
           cases +
           "    esac\n"
           "    if [[ $word == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W '" +
           names +
           "' -- \"$word\")\n"
           "    else\n"
           "        compopt -o filenames 2>/dev/null\n"
           "        mapfile -t COMPREPLY < <(compgen -d -- \"$word\"; compgen -f -X '!*.run' -- "
           "\"$word\")\n"
           "    fi\n"
           "}\n"
           "complete -F _tsflash tsflash\n";
}

/// `text` within single quotes of the shell and brackets of _arguments.
std::string ZshText(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\'')
            escaped += "'\\''";
        else if (c == '[' || c == ']' || c == '\\')
            escaped += std::string("\\") + c;
        else
            escaped += c;
    }
    return escaped;
}

std::string ZshRow(const OptionRow& row, const StringTable& strings) {
    std::string name(row.name);
    std::string value;
    if (!row.value.empty()) {
        name += '=';  // in the same word or the next one
        value = ":" + std::string(row.value) + ":";
        if (row.completion == Completed::Files) value += "_files";
        if (row.completion == Completed::Ports) value += "_tsflash_ports";
        if (!row.words.empty()) value += "(" + Words(row) + ")";
    }
    const std::string rest = "[" + ZshText(strings.Text(row.help)) + "]" + value + "' \\\n";
    // "*": it may be given again.
    if (row.letter.empty()) return "    '*" + name + rest;
    return "    '*'{" + std::string(row.letter) + "," + name + "}'" + rest;
}

std::string Zsh(const StringTable& strings) {
    std::string rows;
    for (const OptionRow& row : OptionTable()) rows += ZshRow(row, strings);
    return "#compdef tsflash\n"
           "# Completion of tsflash for zsh, written by tsflash --completion zsh.\n"
           "_tsflash_ports() {\n"
           "    local -a ports\n"
           "    ports=(${(f)\"$($words[1] " +
           std::string(kPorts) +
           ")\"})\n"
           "    compadd -a ports\n"
           "}\n"
           "_arguments -s \\\n" +
           rows + "    '*:IMAGE:_files -g \"*.run\"'\n";
}

}  // namespace

std::string CompletionFor(const std::string& shell, const StringTable& strings) {
    if (shell == "bash") return Bash();
    if (shell == "zsh") return Zsh(strings);
    return {};
}

}  // namespace vantor
