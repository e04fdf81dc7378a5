// Stores the terminal's options in the registry, for each user.
#pragma once

#include "app/base/StoredValues.hpp"
#include "terminal/options/TerminalOptions.hpp"

namespace vantor {

/// Each option is a string value of its own name in the sub-key "Terminal". An option whose value
/// is missing or not understood has its default. Errors are shown in boxes of this class.
class TerminalOptionsStore : public StoredTexts {
public:
    TerminalOptionsStore(Registry& registry, const CodePage& codePage);

    TerminalOptions Load();

    /// Writes the values in which `now` differs from `before`. The others stay, for they may have
    /// been changed in another window.
    void Save(const TerminalOptions& before, const TerminalOptions& now);
};

}  // namespace vantor
