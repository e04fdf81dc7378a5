// Text functions for every module: case, blanks, and the parts of a path.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

/// `text` without leading and trailing spaces (character 32 only).
std::string_view TrimBlanks(std::string_view text);

/// `text` with ASCII letters in upper case.
std::string UpperCase(std::string_view text);

/// Equal except for the case of ASCII letters.
bool SameText(std::string_view a, std::string_view b);

/// The folder of `path` with its final separator, "\" or "/"; empty when there is none.
std::string_view FolderOf(std::string_view path);

/// `path` without its folder.
std::string_view FileNameOf(std::string_view path);

}  // namespace vantor
