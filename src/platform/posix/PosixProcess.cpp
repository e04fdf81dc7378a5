// The running process on POSIX.
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixServices.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

// What a signal handler uses is initialised beforehand and never freed: it may run at any time.
constexpr std::size_t kAlternateStackSize = 65536;
std::array<char, 256> gTitle{};
std::array<char, kAlternateStackSize> gAlternateStack{};

struct SignalName {
    int signal;
    int code;  // 0: any other code of the signal
    std::string_view name;
};

constexpr std::array kSignalNames = {
    SignalName{SIGBUS, BUS_ADRALN, "Datatype Misalignment"},
    SignalName{SIGBUS, 0, "In Page Error"},
    SignalName{SIGFPE, FPE_INTDIV, "Integer Divide By Zero"},
    SignalName{SIGFPE, FPE_INTOVF, "Integer Overflow"},
    SignalName{SIGFPE, FPE_FLTDIV, "Float Divide By Zero"},
    SignalName{SIGFPE, FPE_FLTOVF, "Float Overflow"},
    SignalName{SIGFPE, FPE_FLTUND, "Float Underflow"},
    SignalName{SIGFPE, 0, "Float Invalid Operation"},
    SignalName{SIGILL, ILL_PRVOPC, "Privileged Instruction"},
    SignalName{SIGILL, 0, "Illegal Instruction"},
    SignalName{SIGSEGV, 0, "Access Violation"},
};

// Async-signal-safe. A failed write is ignored: there is no other channel to report it.
void Say(std::string_view words) {
    WriteAll(STDERR_FILENO, words);
}

void SayTitle() {
    Say(gTitle.data());
    Say(": Unhandled Exception: ");
}

// The default action is restored by now (SA_RESETHAND) and runs on return.
void OnFatalSignal(int signal, siginfo_t* info, void*) {
    std::string_view name;
    for (const SignalName& entry : kSignalNames) {
        if (entry.signal != signal) continue;
        name = entry.name;
        if (entry.code == info->si_code) break;
    }
    SayTitle();
    Say(name);
    Say("\n");
    raise(signal);
}

[[noreturn]] void OnTerminate() {
    SayTitle();
    if (const std::exception_ptr pending = std::current_exception()) {
        try {
            std::rethrow_exception(pending);
        } catch (const std::exception& error) {
            Say(error.what());
        } catch (...) {
            Say("Unknown Exception");
        }
    }
    Say("\n");
    std::abort();
}

std::string LockFile(const std::string& title) {
    std::string name = title;
    const auto isPlain = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    };
    std::replace_if(
        name.begin(), name.end(), [&](char c) { return !isPlain(c); }, '-');
    const char* const runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
    if (runtimeFolder != nullptr && *runtimeFolder == '/')
        return std::string(runtimeFolder) + '/' + name + ".lock";
    return "/tmp/" + name + '-' + std::to_string(getuid()) + ".lock";
}

class PosixProcess : public Process {
public:
    PosixProcess(int argumentCount, const char* const* arguments) {
        for (int i = 1; i < argumentCount; ++i) mArguments.emplace_back(arguments[i]);
    }

    const std::vector<std::string>& Arguments() const override { return mArguments; }

    std::string ExecutablePath() const override {
        std::error_code failed;
        const auto path = std::filesystem::read_symlink("/proc/self/exe", failed);
        if (failed) throw RuntimeError(ErrorNumber::FileNotFound);
        return path;
    }

    bool AnotherInstanceRuns(const std::string& title) override {
        if (mPlaces.contains(title)) return false;
        const std::string path = LockFile(title);
        // O_NOFOLLOW: any user can create a symbolic link in a shared folder.
        PosixHandle file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!file.IsOpen()) return false;
        if (Uninterrupted([&] { return flock(file.Get(), LOCK_EX | LOCK_NB); }) != 0)
            return errno == EWOULDBLOCK;
        mPlaces.emplace(title, std::move(file));
        return false;
    }

    void InstallUnhandledExceptionFilter(const std::string& title) override {
        gTitle[title.copy(gTitle.data(), gTitle.size() - 1)] = '\0';
        std::set_terminate(OnTerminate);

        // An overflowed stack has no space for the handler.
        stack_t stack{};
        stack.ss_sp = gAlternateStack.data();
        stack.ss_size = gAlternateStack.size();
        sigaltstack(&stack, nullptr);  // on failure a stack overflow goes unreported

        struct sigaction action {};
        action.sa_sigaction = OnFatalSignal;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK | static_cast<int>(SA_RESETHAND);
        sigemptyset(&action.sa_mask);
        for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL})
            sigaction(signal, &action, nullptr);  // fails for bad numbers only
    }

private:
    std::vector<std::string> mArguments;
    std::map<std::string, PosixHandle> mPlaces;  // by title, locked until this process ends
};

}  // namespace

std::unique_ptr<Process> MakePosixProcess(int argumentCount, const char* const* arguments) {
    return std::make_unique<PosixProcess>(argumentCount, arguments);
}

}  // namespace vantor
