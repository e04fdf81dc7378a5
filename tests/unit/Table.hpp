// Cases as text: a table, a file below the folder TABLES, has one case a line, "WORDS -> RESULT".
// Words are separated by spaces; text in quotes is one word. Lines that begin with "#" say which
// fault the rows below detect.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <utility>

#include "support/Conversions.hpp"
#include "support/errors/RuntimeError.hpp"
#include "tests/Words.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {

/// Numbers and texts as words of a result.
template <typename... Items>
std::string Row(const Items&... items) {
    std::ostringstream text;
    text.precision(12);
    const char* gap = "";
    ((text << std::exchange(gap, " ") << items), ...);
    return text.str();
}

/// Expects of each row of `table` that `answer` returns its result for its words. An error that it
/// raises is the result "error NUMBER SOURCE".
inline void ExpectTable(const std::string& table,
                        const std::function<std::string(const Words&)>& answer) {
    std::ifstream file(std::string(TABLES "/") + table + ".table");
    int rows = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.starts_with('#')) continue;
        const std::size_t arrow = line.rfind(" ->");
        ASSERT_NE(arrow, std::string::npos) << line;
        std::string expected;
        for (const std::string& word : WordsOf(std::string_view(line).substr(arrow + 3)))
            expected += (expected.empty() ? "" : " ") + word;
        std::string actual;
        try {
            actual = answer(WordsOf(std::string_view(line).substr(0, arrow)));
        } catch (const RuntimeError& error) {
            actual = Row("error", error.Number());
            if (!error.Source().empty()) actual += " " + error.Source();
        }
        EXPECT_EQ(actual, expected) << table << ": " << line;
        ++rows;
    }
    EXPECT_GT(rows, 0) << table;
}

/// From 255 to 0: the last is a NUL, as that of a stored string is.
inline std::string AllBytes() {
    std::string bytes;
    for (int byte = 255; byte >= 0; --byte) bytes += static_cast<char>(byte);
    return bytes;
}

/// What the rows that begin with a word do with all their words.
using Actions = std::map<std::string, std::function<std::string(const Words&)>>;

/// Expects of each row of `table` that its action returns its result. "$F" stands for `folder`,
/// "$B" for all bytes.
inline void ExpectTable(const std::string& table, const Actions& actions,
                        const std::string& folder = "$F") {
    ExpectTable(table, [&](Words words) {
        for (std::string& word : words)
            word = Replaced(Replaced(word, "$F", folder), "$B", AllBytes());
        return Replaced(Replaced(actions.at(words.at(0))(words), folder, "$F"), AllBytes(), "$B");
    });
}

using Argument = const std::string&;

/// What the words "NAME" and "NAME=ARGUMENT" of a row do with a subject.
template <typename Subject>
using Verbs = std::map<std::string, void (*)(Subject&, Argument)>;

/// Expects of each row of `table` that its words, performed one after the other on a new `Subject`,
/// append its result to `Subject::out`, followed by the message boxes of its `platform`, if any.
template <typename Subject>
void ExpectTable(const std::string& table, const Verbs<Subject>& verbs) {
    ExpectTable(table, [&verbs](const Words& steps) {
        Subject subject;
        for (const std::string& step : steps) {
            const std::size_t end = std::min(step.find('='), step.size());
            verbs.at(step.substr(0, end))(subject, step.substr(std::min(end + 1, step.size())));
        }
        if constexpr (requires { subject.platform; })
            for (const std::string& box : Told(subject.platform)) subject.out += "[" + box + "]";
        return subject.out;
    });
}

}  // namespace vantor
