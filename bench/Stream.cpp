// Measures streaming an image to m40sim over a pseudo-terminal: paced against the pure wire time,
// unpaced against a minimal loop that writes the same lines and waits for OK.
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/Measure.hpp"
#include "flash/FirmwareImage.hpp"
#include "flash/FlashSession.hpp"
#include "flash/FlashView.hpp"
#include "platform/portable/CodePage1252.hpp"
#include "platform/portable/CompiledStrings.hpp"
#include "platform/portable/RegistryHive.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "settings/CAppSettings.hpp"
#include "tests/pty/Child.hpp"

namespace vantor::bench {
namespace {

/// An m40sim process for one session.
class Indicator {
public:
    Indicator(const std::string& tools, const std::string& image, bool paced)
        : mChild(Command(tools, image, paced)) {
        if (!mChild.WaitFor("\n")) throw std::runtime_error("m40sim does not start");
        mPort = mChild.Out().substr(6, mChild.Out().find('\n') - 6);
    }
    const std::string& Port() const { return mPort; }
    /// Waits for m40sim to end; throws unless it took a whole image.
    void Finish() {
        if (mChild.Wait() != 0) throw std::runtime_error("m40sim: " + mChild.Err());
    }

private:
    static std::vector<std::string> Command(const std::string& tools, const std::string& image,
                                            bool paced) {
        std::vector<std::string> command{tools + "/m40sim", "--once", "--write", "300",
                                         "--image",         image};
        // Unpaced, the line speed has no effect; "no-baud" saves both sides the speed change.
        if (paced)
            command.push_back("--pace");
        else
            command.insert(command.end(), {"--fault", "no-baud"});
        return command;
    }

    Child mChild;
    std::string mPort;
};

/// A view that shows nothing and measures the time from the first line to the status window.
class Stopwatch : public FlashView {
public:
    explicit Stopwatch(std::string image) : mImage(std::move(image)) {}
    double Seconds() const { return mSeconds; }

    bool Gone() const override { return false; }
    std::shared_ptr<void> KeepAlive() override { return nullptr; }
    void Begin() override {}
    std::optional<std::string> ChooseImage() override { return mImage; }
    void HoldSystem(const std::string&) override {}
    void Busy(bool) override {}
    bool Confirm(const std::string&) override { return true; }
    void ShowStage(const std::string&) override {}
    void AllowAbort(bool) override {}
    void ShowLine(std::int32_t index, std::int32_t, std::int16_t) override {
        if (index == 0) mStart = SteadyClock::now();
    }
    void ShowPercent(std::int16_t) override {}
    void ShowWarning(const std::string&) override {}
    void Beep() override {}
    void OpenStatus(const std::string&) override { mSeconds = SecondsSince(mStart); }
    void CloseStatus() override {}
    void ShowAborted(const std::string&) override {}
    void Report(BoxIcon, const std::string&, const std::string&) override {}
    void ClearProgress() override {}
    void End() override {}
    void Exit() override {}

private:
    std::string mImage;
    SteadyClock::time_point mStart;
    double mSeconds = -1;
};

/// Runs the program's flash session on the pseudo-terminal. Returns the seconds from the display of
/// the first line to the status window of the final stage.
double StreamOurs(const std::string& tools, const std::string& image, bool paced) {
    Indicator indicator(tools, image, paced);
    const auto clock = MakePosixClock();
    const auto files = MakePosixFiles();
    PosixMessagePump pump(*clock);
    const auto ports = MakePosixSerialPorts(pump, {{"COM1", indicator.Port()}});
    const CompiledStrings strings(Language::English);
    RegistryHive registry;
    const CodePage1252 codePage;
    CAppSettings settings(registry, codePage, *files);
    Stopwatch view(image);
    FlashSession session(
        view, settings,
        {.clock = *clock, .files = *files, .pump = pump, .ports = *ports, .strings = strings});
    session.doFlash();
    if (session.Outcome() != FlashOutcome::Done) throw std::runtime_error("the flash failed");
    indicator.Finish();
    return view.Seconds();
}

/// Blocking I/O on the same kind of terminal, for the reference loop.
class BareLine {
public:
    explicit BareLine(const std::string& port) : mFd(open(port.c_str(), O_RDWR | O_NOCTTY)) {
        termios raw{};
        if (mFd < 0 || tcgetattr(mFd, &raw) != 0) throw std::runtime_error("cannot open " + port);
        cfmakeraw(&raw);
        cfsetspeed(&raw, B38400);
        raw.c_cflag |= CSTOPB;
        if (tcsetattr(mFd, TCSANOW, &raw) != 0) throw std::runtime_error("cannot set " + port);
    }
    ~BareLine() { close(mFd); }
    BareLine(const BareLine&) = delete;
    BareLine& operator=(const BareLine&) = delete;

    void Write(const std::string& text) {
        if (write(mFd, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            throw std::runtime_error("write");
    }
    void WaitFor(const std::string& word) {
        std::string reply;
        std::array<char, 256> chunk;
        while (reply.find(word) == std::string::npos) {
            const ssize_t count = read(mFd, chunk.data(), chunk.size());
            if (count <= 0) throw std::runtime_error("read");
            reply.append(chunk.data(), static_cast<std::size_t>(count));
        }
    }

private:
    int mFd;
};

double StreamBare(const std::string& tools, const std::string& image) {
    Indicator indicator(tools, image, false);
    const ImageLines lines = FileToStringArray(image, *MakePosixFiles());
    double seconds = 0;
    {
        BareLine line(indicator.Port());
        for (const char* command : {"TRAV\r", "SYSLOAD\r"}) {
            line.Write(command);
            line.WaitFor("OK");
        }
        const auto start = SteadyClock::now();
        for (std::size_t i = 0; i <= lines.UBound(); ++i) {
            line.Write(std::string(lines[i]) + "\r");
            line.WaitFor("OK");
        }
        seconds = SecondsSince(start);
        line.WaitFor("DONE");
        line.Write("BOOT\r");
    }
    indicator.Finish();
    return seconds;
}

double WireSeconds(const std::string& image) {
    constexpr double kBitsPerCharacter = 11;
    constexpr double kBitsPerSecond = 115200;
    constexpr std::size_t kAcknowledgement = 4;  // OK, CR, LF
    const ImageLines lines = FileToStringArray(image, *MakePosixFiles());
    std::size_t characters = 0;
    for (std::size_t i = 0; i <= lines.UBound(); ++i)
        characters += lines[i].size() + 1 + kAcknowledgement;
    return static_cast<double>(characters) * kBitsPerCharacter / kBitsPerSecond;
}

}  // namespace
}  // namespace vantor::bench

int main(int argc, char** argv) {
    using namespace vantor::bench;
    if (argc < 2) {
        std::fprintf(stderr, "Usage: stream_bench FOLDER-OF-THE-PROGRAMS [unpaced]\n");
        return 2;
    }
    const std::string tools = argv[1];
    const std::string image = tools + "/sample.run";
    if (argc == 2) {
        const double wire = WireSeconds(image);
        const double paced = StreamOurs(tools, image, true);
        std::printf("paced stream: %.3f s, the wire alone %.3f s, ratio %.3f\n", paced, wire,
                    paced / wire);
    }
    const Pair seconds = SideBySide(
        15, [&] { return StreamOurs(tools, image, false); },
        [&] { return StreamBare(tools, image); });
    std::printf("unpaced stream: %.3f s, bare loop %.3f s, ratio %.2f\n", seconds.ours,
                seconds.theirs, seconds.ours / seconds.theirs);
}
