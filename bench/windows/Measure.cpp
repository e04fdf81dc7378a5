// Benchmarks of tsupdate.exe, each against a reference measured in the same run. Has no pass
// threshold: the exit status is 1 only when something could not be measured.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "bench/Measure.hpp"
#include "tests/driver/Workbench.hpp"

namespace vantor::bench {
namespace {

using namespace driver;

/// Seconds from the first image line to the last acknowledgement, by the indicator's transcript,
/// and the wire time of the bytes in both directions.
Pair StreamIn(const std::string& transcript) {
    constexpr double kBitsPerByte = 11;
    constexpr double kBitsPerSecond = 115200;
    std::istringstream records(transcript);
    double start = -1;
    double last = 0;
    std::size_t bytes = 0;
    for (std::string record; std::getline(records, record);) {
        double now = 0;
        char direction = '-';
        int text = 0;
        if (std::sscanf(record.c_str(), "%lf %c %n", &now, &direction, &text) != 2) continue;
        record.erase(0, static_cast<std::size_t>(text));
        if (start < 0 && record.starts_with("S") && !record.starts_with("SYSLOAD")) start = now;
        if (start < 0 || direction == '-') continue;
        if (record.find('D') != std::string::npos && direction == '<') break;  // the verdict
        if (direction == '<') last = now;
        // CR and LF are written as a backslash and a letter: count them once.
        bytes += record.size() - static_cast<std::size_t>(std::ranges::count(record, '\\'));
    }
    return {(last - start) / 1000, static_cast<double>(bytes) * kBitsPerByte / kBitsPerSecond};
}

/// Seconds from the start of a program until its window is visible and accepts input.
double SecondsToStart(const std::string& path, const wchar_t* windowClass) {
    const auto start = SteadyClock::now();
    const Win32Handle process = StartProgram(path);
    if (WaitForInputIdle(process.Get(), 60'000) != 0) throw std::runtime_error("no input: " + path);
    HWND window = nullptr;
    while (window == nullptr || IsWindowVisible(window) == 0 || IsWindowEnabled(window) == 0) {
        window = FindWindowW(windowClass, nullptr);
        if (WaitForSingleObject(process.Get(), 1) != WAIT_TIMEOUT)
            throw std::runtime_error("has ended: " + path);
    }
    const double seconds = SecondsSince(start);
    PostMessageW(window, WM_CLOSE, 0, 0);
    WaitForSingleObject(process.Get(), INFINITE);
    return seconds;
}

std::string Lines(std::size_t bytes) {
    std::string text;
    for (int number = 0; text.size() < bytes; ++number)
        text += "    125.40 kg G  weighing number " + std::to_string(number) + "\r\n";
    return text;
}

/// Presses the key of a monitor menu; returns the milliseconds until the menu is open.
double MillisecondsToMenu(const App& app) {
    const auto start = SteadyClock::now();
    Key("Alt+F");
    while (!app.InMenu()) Sleep(1);
    const double milliseconds = SecondsSince(start) * 1e3;
    while (app.InMenu()) {
        Key("ESCAPE");
        Sleep(20);
    }
    return milliseconds;
}

void StreamAgainstTheWire() {
    Workbench table;
    std::ofstream(table.image, std::ios::binary)
        << std::ifstream(Setting("DRIVE_SAMPLE"), std::ios::binary).rdbuf();
    table.indicator.Start("--pace --write 300");
    table.StartFlash();
    // Not TakeBox: polling for the message box would load the system during the measurement.
    if (table.indicator.Wait() != 0) throw std::runtime_error(table.indicator.Complaints());
    table.app->TakeBox();
    const Pair seconds = StreamIn(Content("indicator.log"));
    std::printf("paced stream of the Windows program: %.3f s, the wire alone %.3f s, ratio %.3f\n",
                seconds.ours, seconds.theirs, seconds.ours / seconds.theirs);
}

void StartAgainstNotepad() {
    const Pair seconds = SideBySide(
        9, [] { return SecondsToStart(Setting("DRIVE_PROGRAM"), L"VantorForm"); },
        [] { return SecondsToStart("C:\\windows\\system32\\notepad.exe", L"Notepad"); });
    std::printf("start of the Windows program: %.0f ms, notepad %.0f ms, ratio %.2f\n",
                seconds.ours * 1e3, seconds.theirs * 1e3, seconds.ours / seconds.theirs);
}

/// Options of the terminal, as they are stored.
struct Shown {
    const char* name;
    const wchar_t* option = nullptr;  // null: as delivered
    std::wstring value{};
};

// With capture on, while a menu is opened repeatedly.
void Flood(const Shown& shown) {
    constexpr double kWireBytesPerSecond = 115200 / 10.0;  // at 8N1
    const std::string flood = Lines(10'000'000);
    std::ofstream(FileOfRun("flood.txt"), std::ios::binary) << flood;
    Ask("flood");
    const Workbench table;
    if (shown.option != nullptr)
        RegSetKeyValueW(HKEY_CURRENT_USER, (Workbench::ProgramKey() + L"\\Terminal").c_str(),
                        shown.option, REG_SZ, shown.value.c_str(),
                        static_cast<DWORD>((shown.value.size() + 1) * sizeof(wchar_t)));
    const std::filesystem::path capture(FileOfRun("capture.txt"));
    std::filesystem::remove(capture);
    const Window monitor = table.OpenMonitor();
    monitor.Choose("mnuCaptureStart");
    table.app->ChooseFile(FileOfRun("capture.txt"));
    table.OpenPort(monitor);
    const auto start = SteadyClock::now();
    Key("RETURN");
    Await("the first bytes", [&] { return std::filesystem::file_size(capture) > 0; });
    double slowest = 0;
    int menus = 0;
    for (; std::filesystem::file_size(capture) < flood.size(); ++menus) {
        slowest = std::max(slowest, MillisecondsToMenu(*table.app));
        Sleep(50);
    }
    const double seconds = SecondsSince(start);
    monitor.Choose("mnuCaptureEnd");
    if (Content("capture.txt") != flood) throw std::runtime_error("captured is not what was sent");
    const std::string end = flood.substr(flood.size() - 200);
    Await("the end of the flood on the screen", [&] {
        return shown.option != nullptr || monitor.Text("comMonitor").find(end) != std::string::npos;
    });
    std::printf(
        "flood of the terminal, %s: %.1f MB in %.2f s, %.0f times a line at 115200 bit/s; slowest "
        "of %d menus %.0f ms\n",
        shown.name, static_cast<double>(flood.size()) / 1e6, seconds,
        static_cast<double>(flood.size()) / seconds / kWireBytesPerSecond, menus, slowest);
}

void FloodOfTheTerminal() {
    Flood({.name = "as delivered"});
    Flood({.name = "with time stamps", .option = L"TimeStamps", .value = L"TimeOfDay"});
    Flood({.name = "as hex dump", .option = L"View", .value = L"Hex"});
    Flood({.name = "with control characters", .option = L"View", .value = L"ControlCharacters"});
}

}  // namespace
}  // namespace vantor::bench

int main() {
    vantor::driver::EnterDesktop();
    int status = 0;
    for (const auto measure :
         {vantor::bench::StreamAgainstTheWire, vantor::bench::StartAgainstNotepad,
          vantor::bench::FloodOfTheTerminal}) {
        try {
            measure();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "nothing to measure: %s\n", error.what());
            status = 1;
        }
    }
    return status;
}
