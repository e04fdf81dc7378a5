// Child processes on POSIX.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <cstddef>
#include <utility>

#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixServices.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

class PosixChildProcess : public ChildProcess {
public:
    PosixChildProcess(pid_t id, PosixHandle output) : mId(id), mOutput(std::move(output)) {}

    bool Read(std::string& output) override {
        std::array<char, 4096> buffer{};
        for (;;) {
            const ssize_t count =
                Uninterrupted([&] { return read(mOutput.Get(), buffer.data(), buffer.size()); });
            if (count < 0) return errno == EAGAIN;
            if (count == 0) return false;
            output.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }

    void CloseOutput() override { mOutput = PosixHandle(); }

    void Interrupt() override {
        if (!mEnded) kill(mId, SIGINT);  // fails only for a process that has ended
    }

    int ExitStatus() override {
        if (mEnded) return mStatus;
        int status = 0;
        if (Uninterrupted([&] { return waitpid(mId, &status, 0); }) != mId) return mStatus;
        mEnded = true;
        mStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return mStatus;
    }

private:
    pid_t mId;
    PosixHandle mOutput;
    bool mEnded = false;
    int mStatus = 1;
};

/// What posix_spawn needs besides the arguments.
class SpawnPlan {
public:
    explicit SpawnPlan(int output) {
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawnattr_init(&attributes);
        // A group of its own: the terminal's interrupt reaches the process through this one only.
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
        posix_spawnattr_setpgroup(&attributes, 0);
    }
    ~SpawnPlan() {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
};

class PosixChildProcesses : public ChildProcesses {
public:
    std::unique_ptr<ChildProcess> Start(const std::string& program,
                                        const std::vector<std::string>& arguments) override {
        std::array<int, 2> ends = {-1, -1};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw RuntimeError(ErrorNumber::FileNotFound);
        PosixHandle readEnd(ends[0]);
        const PosixHandle writeEnd(ends[1]);
        fcntl(readEnd.Get(), F_SETFL, O_NONBLOCK);
        std::vector<std::string> copies = arguments;  // argv is not const
        copies.insert(copies.begin(), program);
        std::vector<char*> argv;
        argv.reserve(copies.size() + 1);
        for (std::string& argument : copies) argv.push_back(argument.data());
        argv.push_back(nullptr);
        const SpawnPlan plan(writeEnd.Get());
        pid_t id = 0;
        if (posix_spawn(&id, program.c_str(), &plan.files, &plan.attributes, argv.data(),
                        environ) != 0)
            throw RuntimeError(ErrorNumber::FileNotFound);
        return std::make_unique<PosixChildProcess>(id, std::move(readEnd));
    }
};

}  // namespace

std::unique_ptr<ChildProcesses> MakePosixChildProcesses() {
    return std::make_unique<PosixChildProcesses>();
}

}  // namespace vantor
