// Three small procedures that are used everywhere.
#pragma once

#include <string>

namespace vantor {

class MessagePump;
class Process;

/// The folder of the program's file, with a final backslash.
/// An error is shown in the module's own box; the result is then empty.
std::string AppPath(const Process& process);

/// `path` with a final "\", added when its last character is another one (or there is none).
std::string AddFinalSlash(const std::string& path);

/// A cheap message pump for wait loops: pumps on every second call. Never raises.
void DoEventsNice(MessagePump& pump);

}  // namespace vantor
