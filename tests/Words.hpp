// The words of a line of a script or a table, and the scripts and the bytes of a file.
#pragma once

#include <cstddef>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

using Words = std::vector<std::string>;

/// The words from number `at` on.
inline Words From(const Words& words, std::ptrdiff_t at) {
    return {words.begin() + at, words.end()};
}

/// The bytes of a file; empty if it cannot be read.
inline std::string ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline char Unescaped(char c) {
    return c == 'r' ? '\r' : c == 'n' ? '\n' : c == 'e' ? '\x1b' : c == 't' ? '\t' : c;
}

/// Splits at spaces; text in quotes is one word, with the escapes \r \n \e \t \" \\ and \xNN.
inline Words WordsOf(std::string_view line) {
    Words words;
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] == ' ') {
            ++at;
            continue;
        }
        std::string word;
        const bool quoted = line[at] == '"';
        at += quoted ? 1 : 0;
        for (; at < line.size() && line[at] != (quoted ? '"' : ' '); ++at) {
            if (!quoted || line[at] != '\\') {
                word += line[at];
            } else if (line.at(++at) == 'x') {
                word +=
                    static_cast<char>(std::stoi(std::string(line.substr(at + 1, 2)), nullptr, 16));
                at += 2;
            } else {
                word += Unescaped(line[at]);
            }
        }
        at += quoted ? 1 : 0;
        words.push_back(word);
    }
    return words;
}

/// `text` with `other` for each `part`.
inline std::string Replaced(std::string text, std::string_view part, std::string_view other) {
    for (auto at = text.find(part); at != std::string::npos;
         at = text.find(part, at + other.size()))
        text.replace(at, part.size(), other);
    return text;
}

/// The lines of each script in a file, by its name: "== NAME" begins one, and "#" a comment.
inline std::map<std::string, Words> ScriptsIn(const std::string& path) {
    std::ifstream file(path);
    std::map<std::string, Words> scripts;
    std::string name;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("== "))
            name = line.substr(3);
        else if (!line.empty() && !line.starts_with('#'))
            scripts[name].push_back(line);
    }
    return scripts;
}

}  // namespace vantor
