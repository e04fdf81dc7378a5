// Small procedures used by all modules.
#pragma once

#include <cstdint>
#include <string>

namespace vantor {

class Folders;
class MessagePump;
class Process;
class StringTable;

/// The folder of the program's file, with a trailing backslash. An error is shown in a box of this
/// module; the result is then empty.
std::string AppPath(const Process& process);

/// `path` with a trailing "\", added unless it is already there. An empty path becomes "\".
std::string AddFinalSlash(const std::string& path);

/// The folder below the user's application-data folder that this program shares with its siblings,
/// with a trailing "\". Raises the error of `Folders::ApplicationData`.
std::string ProductDataFolder(const Folders& folders);

/// A cheap message pump for wait loops: pumps on every second call. Never raises.
void DoEventsNice(MessagePump& pump);

/// "Line 12 of 3401", in the user's language. Both are indices, counted from 0.
std::string LineOf(const StringTable& strings, std::int32_t index, std::int32_t last);

}  // namespace vantor
