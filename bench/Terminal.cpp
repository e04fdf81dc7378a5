// Measures a 10 MB text sent without pause through a pseudo-terminal into the terminal control with
// capture on, against the byte rate of a line at 115200 bit/s with two stop bits.
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "bench/Measure.hpp"
#include "controls/Form.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor::bench {
namespace {

constexpr double kLineBytesPerSecond = 115200.0 / 11;
constexpr std::size_t kTextBytes = 10'000'000;
constexpr std::array kRows = {ControlDesign{ControlKind::Terminal, "com", -1, "", {}, "", ""}};
const FormDesign kDesign = {"frmBench", "", "", {}, kRows};

class Window : public Form {
public:
    Window(WindowManager& manager, Platform& platform)
        : Form(manager, kDesign), com(*this, "com", platform) {}
    TerminalControl com;
};

/// Typical output of an indicator, with a colour sequence in every tenth line.
std::string MakeText() {
    std::string text;
    for (int i = 0; text.size() < kTextBytes; ++i) {
        text += "2026-05-14 10:32  scale 01  gross    1234.56 kg  line " + std::to_string(i);
        text += i % 10 == 0 ? "  \x1B[31mover\x1B[0m\r\n" : "\r\n";
    }
    text.resize(kTextBytes);
    return text;
}

/// The master side of a pseudo-terminal.
class Peer {
public:
    Peer() : mMaster(posix_openpt(O_RDWR | O_NOCTTY)) {
        if (mMaster < 0 || grantpt(mMaster) != 0 || unlockpt(mMaster) != 0)
            throw std::runtime_error("no pseudo-terminal");
    }
    ~Peer() { close(mMaster); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    std::string Path() const { return ptsname(mMaster); }
    void Send(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t count = write(mMaster, bytes.data(), bytes.size());
            if (count < 0) return;  // the comparison of the capture detects the loss
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }

private:
    int mMaster;
};

/// Seconds from the first byte sent to the last byte captured.
double Receive(const std::string& text, const std::string& capture) {
    const Peer peer;
    HeadlessPlatform stage;
    const auto clock = MakePosixClock();
    const auto files = MakePosixFiles();
    PosixMessagePump pump(*clock);
    const auto ports = MakePosixSerialPorts(pump, {{"COM1", peer.Path()}});
    Platform platform = stage.With(
        {.clock = clock.get(), .files = files.get(), .pump = &pump, .ports = ports.get()});
    WindowManager manager(stage.peers, pump);
    const auto window = std::make_shared<Window>(manager, platform);
    window->Load();
    window->com.Port().settings = "115200,N,8,2";
    window->com.PerformCommand(TerminalCommand::Open);
    if (!window->com.PortOpen()) throw std::runtime_error("the port does not open");
    window->com.CaptureFile(capture);
    const auto start = SteadyClock::now();
    std::thread sender([&] { peer.Send(text); });
    while (files->Size(capture) < text.size() && SecondsSince(start) < 60) {
        pump.AwaitInput();
        pump.PumpPending();
    }
    const double seconds = SecondsSince(start);
    sender.join();
    window->com.CaptureFile("");
    window->com.PerformCommand(TerminalCommand::Close);
    window->Unload();
    if (files->ReadAll(capture) != text) throw std::runtime_error("the capture differs");
    return seconds;
}

/// Seconds for parser and screen only, without port and capture.
double Show(const std::string& text) {
    TerminalScreen screen;
    TerminalParser parser(screen);
    constexpr std::size_t kPortion = 4096;
    const auto start = SteadyClock::now();
    for (std::size_t at = 0; at < text.size(); at += kPortion)
        parser.Write(std::string_view(text).substr(at, kPortion));
    return SecondsSince(start);
}

void Report(const char* what, double seconds) {
    const double rate = static_cast<double>(kTextBytes) / seconds;
    std::printf("%s: %.3f s, %.1f MB/s, %.0f times the line\n", what, seconds, rate / 1e6,
                rate / kLineBytesPerSecond);
}

}  // namespace
}  // namespace vantor::bench

int main() {
    using namespace vantor::bench;
    const std::string text = MakeText();
    const std::string capture = std::filesystem::temp_directory_path() / "terminal_bench.txt";
    const Pair seconds = SideBySide(
        5, [&] { return Receive(text, capture); }, [&] { return Show(text); });
    std::filesystem::remove(capture);
    Report("terminal, port and capture", seconds.ours);
    Report("parser and screen alone", seconds.theirs);
}
