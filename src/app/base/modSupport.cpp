#include "app/base/modSupport.hpp"

#include <cstdint>

#include "platform/Folders.hpp"
#include "platform/MessagePump.hpp"
#include "platform/Process.hpp"
#include "platform/StringTable.hpp"
#include "support/Traps.hpp"

namespace vantor {

std::string AppPath(const Process& process) {
    std::string folder;
    BoxedSetup("Pellin.modSupport.AppPath", [&] {
        const std::string path = process.ExecutablePath();
        // On POSIX the path has "/" separators.
        folder = AddFinalSlash(path.substr(0, path.find_last_of("\\/")));
    });
    return folder;
}

std::string AddFinalSlash(const std::string& path) {
    std::string result = path;
    BoxedSetup("Pellin.modSupport.AddFinalSlash", [&] {
        if (!path.ends_with('\\')) result += '\\';
    });
    return result;
}

std::string ProductDataFolder(const Folders& folders) {
    return AddFinalSlash(folders.ApplicationData()) + "TSMR\\CALDOR\\";
}

void DoEventsNice(MessagePump& pump) {
    static std::int16_t counter = 0;
    // The counter is only ever 0 or 1, so every second call pumps. Kept, because the timing of the
    // reply wait depends on this ratio.
    if (counter % 10 == 0) {
        ++counter;
        return;
    }
    Ignoring([&pump] {
        pump.PumpPending();
        pump.AwaitInput();
    });
    counter = 0;
}

std::string LineOf(const StringTable& strings, std::int32_t index, std::int32_t last) {
    return strings.Text(Str::Line) + " " + std::to_string(index) + " " + strings.Text(Str::Of) +
           " " + std::to_string(last);
}

}  // namespace vantor
