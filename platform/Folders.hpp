// The user's special folders, as the shell reports them.
#pragma once

#include <string>

namespace vantor {

class Folders {
public:
    virtual ~Folders() = default;

    /// The user's application-data folder (CSIDL_APPDATA; POSIX: XDG_CONFIG_HOME or ~/.config).
    /// Empty when there is none.
    virtual std::string ApplicationData() const = 0;

    /// The user's documents folder (CSIDL_PERSONAL; POSIX: the XDG documents folder or
    /// ~/Documents). Empty when there is none.
    virtual std::string PersonalDocuments() const = 0;

    /// The current working directory of this process.
    virtual std::string Current() const = 0;
};

}  // namespace vantor
