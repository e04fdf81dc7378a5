// Behaviour of the POSIX services beyond their contracts: concurrent processes on one registry
// file, crashes and their messages, single instance, exclusive ports.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/PosixClock.hpp"
#include "platform/posix/PosixFolders.hpp"
#include "platform/posix/PosixProcess.hpp"
#include "platform/posix/PosixRegistry.hpp"
#include "platform/posix/PosixSerialPorts.hpp"
#include "platform/posix/PosixTerminal.hpp"
#include "tests/TemporaryFolder.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;

class InFolder : public testing::Test {
protected:
    void Put(const std::string& name, const std::string& text) const {
        fs::create_directories(fs::path(folder / name).parent_path());
        std::ofstream(folder / name) << text;
    }

    const TemporaryFolder folder;
    PosixClock clock;
    PosixMessagePump pump{clock};
};

class PosixRegistryFile : public InFolder {
protected:
    RegistryResult Set(PosixRegistry& registry, const std::string& name) const {
        RegistryKey key = 0;
        const RegistryResult result =
            registry.CreateKey(RegistryRoot::CurrentUser, "Soft", kRegistryAllButOwner, key);
        if (result != kRegistrySuccess) return result;
        return registry.SetValue(key, name, kRegistryString, std::string_view("x\0", 2));
    }
    bool Has(const std::string& name) const {
        PosixRegistry registry(file);
        RegistryKey key = 0;
        std::uint32_t type = 0;
        std::uint32_t size = 0;
        registry.OpenKey(RegistryRoot::CurrentUser, "Soft", kRegistryQueryValue, key);
        return registry.QueryValue(key, name, type, nullptr, size) == kRegistrySuccess;
    }

    const std::string file = folder / "registry.reg";
};

TEST_F(PosixRegistryFile, ProgramsThatWriteAtOnceLoseNothingOfEachOther) {
    const auto valueOf = [](int program, int i) { return std::to_string(program * 100 + i); };
    constexpr int kValues = 25;
    std::array<pid_t, 4> children{};
    for (int program = 0; program < 4; ++program) {
        pid_t& child = children.at(static_cast<std::size_t>(program));
        child = fork();
        if (child != 0) continue;
        PosixRegistry registry(file);
        RegistryResult worst = kRegistrySuccess;
        for (int i = 0; i < kValues; ++i) worst |= Set(registry, valueOf(program, i));
        _exit(worst);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    for (int i = 0; i < 4 * kValues; ++i) EXPECT_TRUE(Has(valueOf(i / kValues, i % kValues))) << i;
}

TEST_F(PosixRegistryFile, NeitherOtherProgramsNorCrashesNorFailedWritesCostAValue) {
    PosixRegistry registry(file);
    PosixRegistry other(file);
    ASSERT_EQ(Set(registry, "a") + Set(other, "b") + Set(registry, "c"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && Has("b") && Has("c"));
    Put("registry.reg.new", "REGEDIT4\n\n[HKEY_CURRENT_USER\\So");  // left by a crash
    ASSERT_EQ(Set(registry, "d"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && Has("b") && Has("c") && Has("d"));

    fs::create_directory(file + ".new");
    EXPECT_EQ(Set(registry, "refused"), kRegistryWriteFault);
    fs::remove(file + ".new");
    ASSERT_EQ(Set(registry, "e"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && !Has("refused") && Has("e"));
    PosixRegistry nowhere("/dev/null/registry.reg");
    EXPECT_NE(Set(nowhere, "a"), kRegistrySuccess);
}

TEST(PosixProcessDeathTest, SignalsAndExceptionsAreNamedBeforeTheEnd) {
    const auto dying = [](auto how) {
        PosixProcess process(0, nullptr);
        process.InstallUnhandledExceptionFilter("Update");
        how();
    };
    using testing::KilledBySignal;
    EXPECT_EXIT(dying([] { raise(SIGSEGV); }), KilledBySignal(SIGSEGV),
                "Update: Unhandled Exception: Access Violation");
    EXPECT_EXIT(dying([] { raise(SIGFPE); }), KilledBySignal(SIGFPE), "Float Invalid Operation");
    const auto lost = []() noexcept { static_cast<void>(std::vector<int>().at(0)); };
    EXPECT_EXIT(dying(lost), KilledBySignal(SIGABRT), "Update: Unhandled Exception: vector");
}

TEST_F(InFolder, TheSecondInstanceOfATitleIsTold) {
    setenv("XDG_RUNTIME_DIR", folder.Path().c_str(), 1);
    PosixProcess first(0, nullptr);
    EXPECT_FALSE(first.AnotherInstanceRuns("Update / Utility"));
    EXPECT_FALSE(first.AnotherInstanceRuns("Update / Utility"));
    PosixProcess second(0, nullptr);
    EXPECT_TRUE(second.AnotherInstanceRuns("Update / Utility"));
    EXPECT_FALSE(second.AnotherInstanceRuns("Monitor"));
    EXPECT_FALSE(fs::is_empty(folder.Path()));
    unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(InFolder, AClosedPortIsNotMarkedAsTakenWhileOthersHoldTheDevice) {
    const PosixHandle master(posix_openpt(O_RDWR | O_NOCTTY));
    ASSERT_EQ(grantpt(master.Get()) + unlockpt(master.Get()), 0);
    const std::string device = ptsname(master.Get());
    const PosixHandle other(open(device.c_str(), O_RDWR | O_NOCTTY));
    const auto taken = [&other] {
        int answer = -1;
        return ioctl(other.Get(), TIOCGEXCL, &answer) == 0 ? answer : -1;
    };
    PosixSerialPorts ports(pump, {{"COM5", device}});
    auto port = ports.Open("COM5", {});
    EXPECT_EQ(taken(), 1);
    port.reset();
    EXPECT_EQ(taken(), 0);
}

}  // namespace
}  // namespace vantor
