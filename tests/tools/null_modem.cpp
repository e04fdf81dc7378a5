// Two pseudo-terminals wired to each other, so that a program has a serial port and, as its far
// end, another one. Bytes only: speeds and modem lines are not carried over.
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace vantor {
namespace {

namespace fs = std::filesystem;

/// Written by side 2 it takes side 1 away; a new terminal then stands under the same link, and
/// side 2 is sent the same bytes back.
constexpr std::string_view kHangUp = "\x10~hang up~\x10";

volatile std::sig_atomic_t stopAsked = 0;

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

class Descriptor {
public:
    explicit Descriptor(int number) : mNumber(number) {}
    Descriptor(Descriptor&& other) noexcept : mNumber(std::exchange(other.mNumber, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mNumber, other.mNumber);
        return *this;
    }
    ~Descriptor() {
        if (mNumber >= 0) close(mNumber);
    }
    int Get() const { return mNumber; }

private:
    int mNumber;
};

/// The near end of a terminal, and the link that a host opens it by.
class Side {
public:
    explicit Side(fs::path link)
        : mLink(std::move(link)), mMaster(NewMaster()), mSlave(NewSlave()) {
        Publish();
    }
    ~Side() {
        std::error_code failed;  // a link left behind leads nowhere
        fs::remove(mLink, failed);
    }
    Side(const Side&) = delete;
    Side& operator=(const Side&) = delete;

    /// The new terminal is there before the old one goes, so that it gets another number and
    /// the link never leads to the old one again.
    void HangUp() {
        const Descriptor oldMaster = std::exchange(mMaster, NewMaster());
        const Descriptor oldSlave = std::exchange(mSlave, NewSlave());
        Publish();
        mUnsent.clear();
    }

    pollfd Watched(bool peerHasRoom) const {
        const int events = (peerHasRoom ? POLLIN : 0) | (mUnsent.empty() ? 0 : POLLOUT);
        return {mMaster.Get(), static_cast<short>(events), 0};
    }
    /// A host that does not read stops its peer instead of losing bytes.
    bool HasRoom() const { return mUnsent.size() < 4096; }

    std::string Read() {
        std::array<char, 4096> some{};
        const ssize_t count = read(mMaster.Get(), some.data(), some.size());
        return count > 0 ? std::string(some.data(), static_cast<std::size_t>(count)) : "";
    }
    void Send(std::string_view bytes) {
        mUnsent += bytes;
        while (!mUnsent.empty()) {
            const ssize_t count = write(mMaster.Get(), mUnsent.data(), mUnsent.size());
            if (count <= 0) return;  // full; the rest goes when there is room
            mUnsent.erase(0, static_cast<std::size_t>(count));
        }
    }

private:
    static Descriptor NewMaster() {
        Descriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
        if (master.Get() < 0 || grantpt(master.Get()) != 0 || unlockpt(master.Get()) != 0)
            Fail("No pseudo-terminal can be had");
        return master;
    }
    // Held open and raw: without any host the terminal would report a hang-up all the time.
    Descriptor NewSlave() const {
        Descriptor slave(open(ptsname(mMaster.Get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
        termios settings{};
        if (slave.Get() < 0 || tcgetattr(slave.Get(), &settings) != 0)
            Fail("The pseudo-terminal cannot be opened");
        cfmakeraw(&settings);
        settings.c_cflag |= CLOCAL | CREAD;
        if (tcsetattr(slave.Get(), TCSANOW, &settings) != 0)
            Fail("The pseudo-terminal cannot be set up");
        return slave;
    }
    void Publish() const {
        const fs::path fresh = mLink.string() + ".new";
        fs::remove(fresh);
        fs::create_symlink(ptsname(mMaster.Get()), fresh);
        fs::rename(fresh, mLink);
    }

    fs::path mLink;
    Descriptor mMaster;
    Descriptor mSlave;
    std::string mUnsent;
};

/// Both sides and what passes between them.
class Wire {
public:
    Wire(const char* firstLink, const char* secondLink) : mFirst(firstLink), mSecond(secondLink) {}

    /// Carries bytes until asked to stop, asleep while there are none.
    void Serve(const sigset_t& waitMask) {
        while (stopAsked == 0) {
            std::array<pollfd, 2> ends = {mFirst.Watched(mSecond.HasRoom()),
                                          mSecond.Watched(mFirst.HasRoom())};
            if (ppoll(ends.data(), ends.size(), nullptr, &waitMask) < 0) continue;  // a signal
            mSecond.Send(mSecond.HasRoom() ? mFirst.Read() : "");
            FromSecond(mFirst.HasRoom() ? mSecond.Read() : "");
        }
    }

private:
    void FromSecond(const std::string& bytes) {
        mFirst.Send(bytes);
        mLately += bytes;
        if (mLately.ends_with(kHangUp)) {
            mFirst.HangUp();
            mSecond.Send(kHangUp);
            mLately.clear();
        }
        if (mLately.size() > kHangUp.size()) mLately.erase(0, mLately.size() - kHangUp.size());
    }

    Side mFirst;
    Side mSecond;
    std::string mLately;  // the last that side 2 has written
};

/// Signals come in only where the program waits, so that none slips in between.
sigset_t BlockStopSignals() {
    struct sigaction action {};
    action.sa_handler = [](int) { stopAsked = 1; };
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    for (const int signal : {SIGTERM, SIGINT}) {
        sigaction(signal, &action, nullptr);
        sigaddset(&blocked, signal);
    }
    sigprocmask(SIG_BLOCK, &blocked, &before);
    return before;
}

}  // namespace
}  // namespace vantor

int main(int argc, char** argv) {
    using namespace vantor;
    if (argc != 5 || std::string_view(argv[1]) != "--link1" ||
        std::string_view(argv[3]) != "--link2") {
        std::fputs("Usage: null_modem --link1 PATH --link2 PATH\n", stderr);
        return 2;
    }
    try {
        const sigset_t waitMask = BlockStopSignals();
        Wire wire(argv[2], argv[4]);
        std::puts("ready");
        std::fflush(stdout);
        wire.Serve(waitMask);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "null_modem: %s\n", error.what());
        return 1;
    }
}
