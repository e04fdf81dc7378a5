// What the native services off Windows do beyond their contracts: several programs on one
// registry file, crashes, last words, interrupts, names of ports.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/posix/PosixClock.hpp"
#include "platform/posix/PosixFolders.hpp"
#include "platform/posix/PosixProcess.hpp"
#include "platform/posix/PosixRegistry.hpp"
#include "platform/posix/PosixSerialPorts.hpp"
#include "platform/posix/PosixTerminal.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;

class InFolder : public testing::Test {
protected:
    InFolder() {
        std::string path = (fs::temp_directory_path() / "posix-XXXXXX").string();
        folder = mkdtemp(path.data());
    }
    ~InFolder() override { fs::remove_all(folder); }

    void Put(const fs::path& name, const std::string& text) const {
        fs::create_directories((folder / name).parent_path());
        std::ofstream(folder / name) << text;
    }

    fs::path folder;
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
        return registry.OpenKey(RegistryRoot::CurrentUser, "Soft", kRegistryQueryValue, key) ==
                   kRegistrySuccess &&
               registry.QueryValue(key, name, type, nullptr, size) == kRegistrySuccess;
    }

    const std::string file = (folder / "registry.reg").string();
};

TEST_F(PosixRegistryFile, ProgramsThatWriteAtOnceLoseNothingOfEachOther) {
    constexpr int kPrograms = 4;
    constexpr int kValues = 25;
    std::array<pid_t, kPrograms> children{};
    for (int program = 0; program < kPrograms; ++program) {
        pid_t& child = children.at(static_cast<std::size_t>(program));
        child = fork();
        if (child != 0) continue;
        PosixRegistry registry(file);
        RegistryResult worst = kRegistrySuccess;
        for (int i = 0; i < kValues; ++i)
            worst |= Set(registry, std::to_string(program) + '.' + std::to_string(i));
        _exit(worst);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    for (int program = 0; program < kPrograms; ++program)
        for (int i = 0; i < kValues; ++i)
            EXPECT_TRUE(Has(std::to_string(program) + '.' + std::to_string(i)));
}

TEST_F(PosixRegistryFile, AnOpenKeySeesNewContentsAfterTheNextOpen) {
    PosixRegistry first(file);
    PosixRegistry second(file);
    ASSERT_EQ(Set(first, "a"), kRegistrySuccess);
    ASSERT_EQ(Set(second, "b"), kRegistrySuccess);
    ASSERT_EQ(Set(first, "c"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && Has("b") && Has("c"));
}

TEST_F(PosixRegistryFile, WhatACrashLeavesBesideTheFileIsHarmless) {
    PosixRegistry registry(file);
    ASSERT_EQ(Set(registry, "a"), kRegistrySuccess);
    Put("registry.reg.new", "REGEDIT4\n\n[HKEY_CURRENT_USER\\So");
    EXPECT_TRUE(Has("a"));
    ASSERT_EQ(Set(registry, "b"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && Has("b"));
}

TEST_F(PosixRegistryFile, AChangeThatCannotBeStoredIsRefusedAndTakenBack) {
    PosixRegistry registry(file);
    ASSERT_EQ(Set(registry, "a"), kRegistrySuccess);
    fs::create_directory(file + ".new");
    EXPECT_EQ(Set(registry, "b"), kRegistryWriteFault);
    fs::remove(file + ".new");
    ASSERT_EQ(Set(registry, "c"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && !Has("b") && Has("c"));
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

class PosixPrograms : public InFolder {};

TEST_F(PosixPrograms, TheSecondInstanceOfATitleIsTold) {
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    PosixProcess first(0, nullptr);
    EXPECT_FALSE(first.AnotherInstanceRuns("Update / Utility"));
    EXPECT_FALSE(first.AnotherInstanceRuns("Update / Utility"));
    PosixProcess second(0, nullptr);
    EXPECT_TRUE(second.AnotherInstanceRuns("Update / Utility"));
    EXPECT_FALSE(second.AnotherInstanceRuns("Monitor"));
    EXPECT_FALSE(fs::is_empty(folder));
    unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(PosixPrograms, FoldersFollowTheDesktopConventions) {
    setenv("HOME", folder.c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    const PosixFolders folders;
    const std::string home = folder.string();
    EXPECT_EQ(folders.ApplicationData(), home + "/.config");
    EXPECT_EQ(folders.PersonalDocuments(), home + "/Documents");
    const std::array<std::pair<const char*, std::string>, 4> cases = {
        {{"# XDG_DOCUMENTS_DIR=\"/no\"\nXDG_DOCUMENTS_DIR=\"$HOME/Mis \\\"docs\\\"/\"\n",
          home + "/Mis \"docs\""},
         {"XDG_MUSIC_DIR=\"/m\"\nXDG_DOCUMENTS_DIR=\"/srv/docs\"", "/srv/docs"},
         {"XDG_DOCUMENTS_DIR=\"$HOME/\"", home},
         {"XDG_DOCUMENTS_DIR=\"relative\"", home + "/Documents"}}};
    for (const auto& [text, expected] : cases) {
        Put(".config/user-dirs.dirs", text);
        EXPECT_EQ(folders.PersonalDocuments(), expected);
    }
    setenv("XDG_CONFIG_HOME", "not/a/full/path", 1);
    EXPECT_EQ(folders.ApplicationData(), home + "/.config");
    unsetenv("XDG_CONFIG_HOME");
}

TEST_F(PosixPrograms, LinesAreReadUntilAnInterruptOrTheEnd) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const int oldInput = dup(STDIN_FILENO);
    dup2(ends[0], STDIN_FILENO);
    PosixTerminal terminal;
    raise(SIGINT);
    ASSERT_EQ(write(ends[1], "one\r\n\ntwo", 9), 9);
    EXPECT_EQ(terminal.ReadLine(), "one") << "an interrupt from before the wait ended it";
    EXPECT_EQ(terminal.ReadLine(), "");
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        usleep(50000);
        _exit(kill(parent, SIGINT));
    }
    EXPECT_EQ(terminal.ReadLine(), std::nullopt);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_TRUE(terminal.TakeInterrupt());
    EXPECT_TRUE(terminal.TakeInterrupt());
    EXPECT_FALSE(terminal.TakeInterrupt());
    close(ends[1]);
    EXPECT_EQ(terminal.ReadLine(), "two");
    EXPECT_EQ(terminal.ReadLine(), std::nullopt);
    dup2(oldInput, STDIN_FILENO);
}

class PosixPortNames : public InFolder {
protected:
    PosixClock clock;
    PolledPump pump{clock};
};

TEST_F(PosixPortNames, TheListHoldsRealPortsInNumericOrderWithWhatUsbSaysOfThem) {
    Put("tty/ttyS0/type", "4\n");
    Put("tty/ttyS1/type", "0\n");
    for (const char* name : {"ttyUSB0", "ttyUSB1"}) {
        Put(fs::path("usb/1-1") / name / "marker", "");
        fs::create_directories(folder / "tty" / name);
        fs::create_directory_symlink(folder / "usb/1-1" / name, folder / "tty" / name / "device");
    }
    Put("usb/1-1/product", "Serial Converter\n");
    Put("usb/1-1/manufacturer", "Acme\n");
    std::string names;
    const PosixSerialPorts ports(pump, {{"COM3", "/dev/null"}, {"com4", "/no/such/device"}},
                                 (folder / "tty").string());
    for (const SerialPortInfo& port : ports.List()) names += port.name + '=' + port.device + ';';
    EXPECT_EQ(names, "COM1=/dev/ttyS0;COM3=/dev/null;COM9=/dev/ttyUSB0;COM10=/dev/ttyUSB1;");
    EXPECT_EQ(ports.List()[2].description, "Acme Serial Converter");
}

TEST_F(PosixPortNames, ADeviceHasOneNameHoweverItIsWritten) {
    PosixSerialPorts ports(pump, {{"COM5", "/dev/null"}}, (folder / "tty").string());
    fs::create_symlink("/dev/null", folder / "by-id");
    EXPECT_EQ(ports.MapDevice("/dev/ttyUSB2"), "COM11");
    EXPECT_EQ(ports.MapDevice("com7"), "COM7");
    EXPECT_EQ(ports.MapDevice((folder / "by-id").string()), "COM5");
    EXPECT_EQ(ports.MapDevice("/dev/zero"), "COM32");
    EXPECT_EQ(ports.MapDevice("/dev/full"), "COM31");
    EXPECT_EQ(ports.MapDevice("/dev/zero"), "COM32");
}

TEST_F(PosixPortNames, AClosedPortIsNotMarkedAsTakenWhileOthersHoldTheDevice) {
    const PosixHandle master(posix_openpt(O_RDWR | O_NOCTTY));
    ASSERT_EQ(grantpt(master.Get()), 0);
    ASSERT_EQ(unlockpt(master.Get()), 0);
    const std::string device = ptsname(master.Get());
    const PosixHandle other(open(device.c_str(), O_RDWR | O_NOCTTY));
    PosixSerialPorts ports(pump, {{"COM5", device}});
    int taken = -1;
    auto port = ports.Open("COM5", {});
    EXPECT_TRUE(ioctl(other.Get(), TIOCGEXCL, &taken) == 0 && taken == 1);
    port.reset();
    EXPECT_TRUE(ioctl(other.Get(), TIOCGEXCL, &taken) == 0 && taken == 0);
}

}  // namespace
}  // namespace vantor
