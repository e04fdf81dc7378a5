// Writes the text of a terminal to a file.
#pragma once

#include "platform/Files.hpp"
#include "terminal/ShownText.hpp"

namespace vantor {

/// Writes what copying all of `text` gives, in pieces, and a final line end. Raises what
/// OutputFile::Write does.
void WriteText(const ShownText& text, OutputFile& file);

}  // namespace vantor
