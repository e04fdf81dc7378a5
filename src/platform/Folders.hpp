// The user's special folders, as the shell reports them.
#pragma once

#include <string>

namespace vantor {

class Folders {
public:
    virtual ~Folders() = default;

    /// The user's application-data folder (CSIDL_APPDATA; off Windows XDG_CONFIG_HOME or
    /// ~/.config). Raises RuntimeError 76 when the system has none.
    virtual std::string ApplicationData() const = 0;

    /// The user's documents folder (CSIDL_PERSONAL; off Windows the XDG documents folder or
    /// ~/Documents). Raises RuntimeError 76 when the system has none.
    virtual std::string PersonalDocuments() const = 0;

    /// The current folder of this process; empty when the system does not report it.
    virtual std::string Current() const = 0;
};

}  // namespace vantor
