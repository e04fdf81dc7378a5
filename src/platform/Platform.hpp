// References to all platform services, passed from the start-up code to the application.
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

/// The services outlive every object that gets a reference. A class that needs one or two of them
/// takes those, not the whole structure.
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
