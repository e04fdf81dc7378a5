// All services of the platform in one place, as the start-up code lends them to the house.
#pragma once

namespace vantor {

class Clipboard;
class Clock;
class CodePage;
class CommonDialogs;
class Files;
class FileVersions;
class Folders;
class MessageBoxes;
class MessagePump;
class Peers;
class Pictures;
class Process;
class Registry;
class SerialPorts;
class Shell;
class StringTable;

/// References to the services; they outlive everything that they are lent to. A class that
/// needs one or two of them takes those, not the whole.
struct Platform {
    Clipboard& clipboard;
    Clock& clock;
    CodePage& codePage;
    CommonDialogs& dialogs;
    Files& files;
    FileVersions& versions;
    Folders& folders;
    MessageBoxes& boxes;
    MessagePump& pump;
    Peers& peers;
    Pictures& pictures;
    Process& process;
    Registry& registry;
    SerialPorts& ports;
    Shell& shell;
    StringTable& strings;
};

}  // namespace vantor
