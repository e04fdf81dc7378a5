// Small procedures used by all modules.
#pragma once

#include <cstdint>
#include <string>

namespace vantor {

class MessagePump;
class Process;
class StringTable;

/// The folder of the program's file, with a trailing backslash. An error is shown in a box of this
/// module; the result is then empty.
std::string AppPath(const Process& process);

/// `path` with a trailing "\", added unless it is already there. An empty path becomes "\".
std::string AddFinalSlash(const std::string& path);

/// A cheap message pump for wait loops: pumps on every second call. Never raises.
void DoEventsNice(MessagePump& pump);

/// "Line 12 of 3401", in the user's language. Both are indices, counted from 0.
std::string LineOf(const StringTable& strings, std::int32_t index, std::int32_t last);

}  // namespace vantor
