// m40sim serves the virtual indicator on a pseudo-terminal: options, event loop and real time.
// `VirtualIndicator` and `RunningMode` implement the behaviour.
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/posix/PosixStreams.hpp"
#include "simulator/Fault.hpp"
#include "simulator/FlashMemory.hpp"
#include "simulator/LatencyTimer.hpp"
#include "simulator/RunningMode.hpp"
#include "simulator/VirtualIndicator.hpp"
#include "simulator/m40sim/PseudoTerminal.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;

constexpr Micros kMicrosPerMilli = 1'000;
// Busy-wait before a due byte: the wake-up from a sleep is that inaccurate.
constexpr Micros kSpin = 200;
// Busy-wait for the next byte after each byte, so that the wake-up time does not slow down a host
// that streams.
constexpr Micros kAttentive = 500;
// How long `--once` waits for the host to close after BOOT.
constexpr Micros kFarewell = 2'000'000;

constexpr std::string_view kHelp =
    R"(m40sim: an M40 indicator in its boot monitor, on a pseudo-terminal.

Usage: m40sim [options]

Prints "port: PATH" and serves on PATH until SIGTERM or SIGINT.

  --image FILE       DONE only for an image equal to FILE (S-records)
  --save FILE        write the memory as records at every verdict and at exit
  --link PATH        symbolic link to the terminal, removed at exit
  --once             end after one session; status 0 only when an image was taken,
                     verified and booted
  --baud N           first speed in bit/s (default 38400)
  --pace             bytes take the time of a UART in both directions
  --think MS         time before each acknowledgement (default 0)
  --latency MS       the line ends in a USB adapter with this latency timer: what the indicator
                     says waits until MS after the first byte that waits, or until 62 bytes
                     have gathered, as in the common chip (default 0: nothing waits)
  --write MS         time to write flash memory before the verdict (default 1000)
  --fault FAULT      show a fault; repeatable
  --transcript FILE  record what passes: ms since start, direction, bytes
  --terminal         the indicator's running mode instead of its boot monitor: echoes what is
                     typed and answers a few commands (HELP); of the other options
                     --link and --transcript count
  --help             this text

Faults at image line LINE (from 0, a repeated line counts once), shown on its first TIMES
arrivals (default 1), as KIND@LINE[xTIMES]:
  nak silent late=MS drop garble noise split done verify hangup
Faults of a stage: no-trav no-baud no-sysload (each also =silent), verify-failed,
  no-verdict, split-verdict

Status: 0 well, 1 the session failed or the host broke the dialogue, 2 wrong usage.
)";

struct Options {
    IndicatorOptions indicator;
    Micros latency = 0;
    std::optional<fs::path> save;
    std::optional<fs::path> link;
    std::optional<fs::path> transcript;
    bool once = false;
    bool terminal = false;
    bool help = false;
};

std::int64_t Number(std::string_view text, std::int64_t least, std::string_view option) {
    constexpr std::int64_t most = 3'600'000;
    const auto value = ParseInteger(text);
    if (!value || *value < least || *value > most) {
        throw std::invalid_argument(std::string(option) + " needs a number from " +
                                    std::to_string(least) + " to " + std::to_string(most) +
                                    ", not \"" + std::string(text) + "\".");
    }
    return *value;
}

FlashMemory LoadImage(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::invalid_argument("The image " + path.string() + " cannot be read.");
    return FlashMemory::FromRecords(std::string(std::istreambuf_iterator<char>(file), {}));
}

struct Argument {
    std::string_view name;
    std::string_view value;  // empty for an option without one

    Micros Time() const { return Number(value, 0, name) * kMicrosPerMilli; }
};

struct Option {
    std::string_view name;
    bool takesValue;
    void (*set)(Options&, const Argument&);
};

using Given = const Argument&;
constexpr std::array<Option, 13> kOptions{{
    {"--terminal", false, [](Options& o, Given) { o.terminal = true; }},
    {"--once", false, [](Options& o, Given) { o.once = true; }},
    {"--pace", false, [](Options& o, Given) { o.indicator.paced = true; }},
    {"--help", false, [](Options& o, Given) { o.help = true; }},
    {"--image", true, [](Options& o, Given g) { o.indicator.expected = LoadImage(g.value); }},
    {"--save", true, [](Options& o, Given g) { o.save = g.value; }},
    {"--link", true, [](Options& o, Given g) { o.link = g.value; }},
    {"--transcript", true, [](Options& o, Given g) { o.transcript = g.value; }},
    {"--baud", true,
     [](Options& o, Given g) {
         o.indicator.bitsPerSecond = static_cast<std::uint32_t>(Number(g.value, 300, g.name));
     }},
    {"--think", true, [](Options& o, Given g) { o.indicator.think = g.Time(); }},
    {"--latency", true, [](Options& o, Given g) { o.latency = g.Time(); }},
    {"--write", true, [](Options& o, Given g) { o.indicator.writeFlash = g.Time(); }},
    {"--fault", true,
     [](Options& o, Given g) { o.indicator.faults.push_back(ParseFault(g.value)); }},
}};

Options ParseOptions(std::span<char* const> arguments) {
    Options options;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const std::string_view name = *argument;
        const auto* const option = std::ranges::find(kOptions, name, &Option::name);
        if (option == kOptions.end()) {
            throw std::invalid_argument("\"" + std::string(name) + "\" is no option; see --help.");
        }
        if (option->takesValue && ++argument == arguments.end()) {
            throw std::invalid_argument(std::string(name) + " needs a value.");
        }
        option->set(options, {name, option->takesValue ? *argument : ""});
    }
    return options;
}

// A symbolic link removed by the destructor.
class Link {
public:
    Link(fs::path path, const fs::path& target) : mPath(std::move(path)), mTarget(target) {
        if (fs::is_symlink(mPath)) fs::remove(mPath);
        fs::create_symlink(target, mPath);
    }
    ~Link() {
        std::error_code ignored;
        // Another simulator may have replaced the link.
        if (fs::read_symlink(mPath, ignored) == mTarget) fs::remove(mPath, ignored);
    }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

private:
    fs::path mPath;
    fs::path mTarget;
};

// The terminal that both modes serve, with its link and a readable log of the traffic with times.
class LoggedTerminal {
public:
    explicit LoggedTerminal(const Options& options) {
        if (options.transcript) {
            mLog.open(*options.transcript, std::ios::binary | std::ios::trunc);
            if (!mLog) {
                throw std::invalid_argument("The transcript " + options.transcript->string() +
                                            " cannot be written.");
            }
        }
        if (options.link) mLink.emplace(*options.link, pty.Path());
        std::cout << "port: " << pty.Path() << std::endl;
    }

    Micros Now() const {
        return std::chrono::duration_cast<std::chrono::microseconds>(
                   std::chrono::steady_clock::now() - mStart)
            .count();
    }
    void Log(Micros now, std::string_view direction, std::string_view bytes) {
        if (!mLog.is_open()) return;
        std::array<char, 32> time{};
        std::snprintf(time.data(), time.size(), "%12.3f ", static_cast<double>(now) / 1000.0);
        mLog << time.data() << direction << ' ' << Escaped(bytes, "\r\n") << '\n';
    }
    void Flush() {
        if (mLog.is_open()) mLog.flush();
    }
    void Write(Micros now, std::string_view bytes) {
        pty.Write(bytes);
        Log(now, "<", bytes);
    }

    PseudoTerminal pty;

private:
    std::ofstream mLog;
    std::optional<Link> mLink;
    std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
};

volatile std::sig_atomic_t stopAsked = 0;

class Server {
public:
    explicit Server(Options options)
        : mOptions(std::move(options)),
          mTerminal(mOptions),
          mIndicator(mOptions.indicator),
          mAdapter(mOptions.latency) {}

    // Serves until a signal, a hang-up or the end of `--once`; returns the exit status.
    int Run();

private:
    void Listen();
    void Take(std::string_view bytes);
    void NoteLine();
    void NoteClose();
    void Speak();
    void Report();
    void Pause();
    bool Finished();
    void Save() const;
    int Status() const;

    Options mOptions;
    LoggedTerminal mTerminal;
    VirtualIndicator mIndicator;
    LatencyTimer mAdapter;
    bool mHostOpen = false;
    LineSettings mHostLine;
    Micros mLastByte = -kAttentive;
    std::optional<Micros> mOverSince;
    unsigned mVerdictsSaved = 0;
    std::size_t mViolationsTold = 0;
};

int Server::Run() {
    for (;;) {
        Listen();
        Speak();
        Report();
        if (stopAsked != 0 || Finished()) break;
        Pause();
    }
    Save();
    if (mIndicator.HungUp()) {
        mTerminal.pty.Close();
        std::cerr << "m40sim: The terminal was hung up, as the fault asked.\n";
    }
    return Status();
}

void Server::Listen() {
    const PseudoTerminal::State state = mTerminal.pty.Look();
    if (state.reopened) {
        if (!mHostOpen && !state.bytesBefore.empty()) NoteLine();
        Take(state.bytesBefore);
        NoteClose();
    }
    if ((!mHostOpen && state.hostOpen) || !state.bytes.empty()) NoteLine();
    Take(state.bytes);
    if (!state.hostOpen) NoteClose();
}

void Server::Take(std::string_view bytes) {
    if (bytes.empty()) return;
    const Micros now = mTerminal.Now();
    mIndicator.Receive(bytes, now);
    mTerminal.Log(now, ">", bytes);
    mLastByte = now;
}

void Server::NoteClose() {
    if (!std::exchange(mHostOpen, false)) return;
    const Micros now = mTerminal.Now();
    mIndicator.HostClosed(now);
    mAdapter.Clear();
    mTerminal.Log(now, "-", "host closed");
    mTerminal.Flush();
}

void Server::NoteLine() {
    const LineSettings line = mTerminal.pty.Line();
    if (mHostOpen && line == mHostLine) return;
    mHostOpen = true;
    mHostLine = line;
    const Micros now = mTerminal.Now();
    mIndicator.HostLine(line, now);
    mTerminal.Log(now, "-",
                  "host at " + std::to_string(line.bitsPerSecond) + " bit/s, " +
                      std::to_string(line.stopBits) + " stop bits");
}

void Server::Speak() {
    const Micros now = mTerminal.Now();
    const std::string bytes = mAdapter.Pass(mIndicator.Transmit(now), now);
    if (bytes.empty()) return;
    mTerminal.Write(now, bytes);
    mLastByte = now;
}

void Server::Report() {
    for (; mViolationsTold < mIndicator.Violations().size(); ++mViolationsTold) {
        std::cerr << "m40sim: " << mIndicator.Violations()[mViolationsTold] << std::endl;
    }
    if (mVerdictsSaved == mIndicator.Verdicts()) return;
    mVerdictsSaved = mIndicator.Verdicts();
    Save();
}

void Server::Pause() {
    const Micros now = mTerminal.Now();
    std::optional<Micros> due = mIndicator.NextDue();
    if (const std::optional<Micros> held = mAdapter.NextDue())
        due = due ? std::min(*due, *held) : held;
    const bool dueSoon = due && *due - now <= kSpin;
    // Unpaced output needs no exact timing, and sleeping leaves the CPU to the kernel thread that
    // moves the bytes.
    const bool attentive =
        mOptions.indicator.paced && !due && mHostOpen && now - mLastByte < kAttentive;
    if (dueSoon || attentive) {
        // The kernel thread that moves bytes between master and slave may need this CPU; without
        // the yield no bytes would arrive.
        std::this_thread::yield();
    } else if (due) {
        mTerminal.pty.Wait(std::chrono::microseconds(*due - now - kSpin));
    } else {
        const bool parting = mOverSince.has_value();
        mTerminal.pty.Wait(parting ? std::optional(std::chrono::microseconds(kFarewell))
                                   : std::nullopt);
    }
}

bool Server::Finished() {
    if (mIndicator.HungUp()) return true;
    if (!mOptions.once || !mIndicator.SessionOver()) {
        mOverSince.reset();
        return false;
    }
    // Let the host close first; otherwise it may see a hang-up while it still sends.
    if (!mOverSince) mOverSince = mTerminal.Now();
    return !mHostOpen || mTerminal.Now() - *mOverSince >= kFarewell;
}

void Server::Save() const {
    if (!mOptions.save) return;
    std::ofstream file(*mOptions.save, std::ios::binary | std::ios::trunc);
    file << mIndicator.Memory().ToRecords();
    if (!file.flush()) {
        throw std::runtime_error("The memory cannot be written to " + mOptions.save->string() +
                                 ".");
    }
}

int Server::Status() const {
    if (mIndicator.HungUp() || !mIndicator.Violations().empty()) return 1;
    if (mOptions.once && !mIndicator.Booted()) return 1;
    return 0;
}

// Serves the running mode on a pseudo-terminal until SIGTERM or SIGINT.
int ServeRunningMode(const Options& options) {
    LoggedTerminal terminal(options);
    RunningMode indicator;
    while (stopAsked == 0) {
        const std::string bytes = terminal.pty.Look().bytes;
        if (!bytes.empty()) terminal.Log(terminal.Now(), ">", bytes);
        const std::string answer = indicator.Receive(bytes);
        if (!answer.empty()) terminal.Write(terminal.Now(), answer);
        terminal.Flush();
        if (bytes.empty()) terminal.pty.Wait(std::nullopt);
    }
    return 0;
}

void StopOnSignals() {
    struct sigaction action {};
    action.sa_handler = [](int) { stopAsked = 1; };
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

}  // namespace
}  // namespace vantor

int main(int argc, char** argv) {
    using namespace vantor;
    OpenStandardStreams();
    const std::span<char* const> arguments(argv, static_cast<std::size_t>(argc));
    try {
        Options options =
            ParseOptions(arguments.subspan(std::min<std::size_t>(1, arguments.size())));
        if (options.help) {
            std::cout << kHelp;
            return 0;
        }
        StopOnSignals();
        if (options.terminal) return ServeRunningMode(options);
        return Server(std::move(options)).Run();
    } catch (const std::invalid_argument& error) {
        std::cerr << "m40sim: " << error.what() << '\n';
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "m40sim: " << error.what() << '\n';
        return 1;
    }
}
