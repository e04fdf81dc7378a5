// Behaviour of the POSIX services beyond their contracts: concurrent processes on one registry
// file, crashes and their messages, single instance, the list of ports.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "tests/TemporaryFolder.hpp"
#include "tests/Words.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class InFolder : public testing::Test {
protected:
    void Put(const std::string& name, const std::string& text) const {
        fs::create_directories(fs::path(folder / name).parent_path());
        std::ofstream(folder / name) << text;
    }
    std::string Text(const std::string& name) const { return ContentOf(folder / name); }

    const TemporaryFolder folder;
};

class PosixRegistryFile : public InFolder {
protected:
    RegistryResult Set(Registry& registry, const std::string& name) const {
        RegistryKey key = 0;
        const RegistryResult result =
            registry.CreateKey(RegistryRoot::CurrentUser, "Soft", kRegistryAllButOwner, key);
        if (result != kRegistrySuccess) return result;
        return registry.SetValue(key, name, kRegistryString, std::string_view("x\0", 2));
    }
    bool Has(const std::string& name) const {
        const auto registry = MakePosixRegistry(file);
        RegistryKey key = 0;
        std::uint32_t type = 0;
        std::uint32_t size = 0;
        registry->OpenKey(RegistryRoot::CurrentUser, "Soft", kRegistryQueryValue, key);
        return registry->QueryValue(key, name, type, nullptr, size) == kRegistrySuccess;
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
        const auto registry = MakePosixRegistry(file);
        RegistryResult worst = kRegistrySuccess;
        for (int i = 0; i < kValues; ++i) worst |= Set(*registry, valueOf(program, i));
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
    const auto registry = MakePosixRegistry(file);
    const auto other = MakePosixRegistry(file);
    ASSERT_EQ(Set(*registry, "a") + Set(*other, "b") + Set(*registry, "c"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && Has("b") && Has("c"));
    Put("registry.reg.new", "REGEDIT4\n\n[HKEY_CURRENT_USER\\So");  // left by a crash
    ASSERT_EQ(Set(*registry, "d"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && Has("b") && Has("c") && Has("d"));

    fs::create_directory(file + ".new");
    EXPECT_EQ(Set(*registry, "refused"), kRegistryWriteFault);
    fs::remove(file + ".new");
    ASSERT_EQ(Set(*registry, "e"), kRegistrySuccess);
    EXPECT_TRUE(Has("a") && !Has("refused") && Has("e"));
    const auto nowhere = MakePosixRegistry("/dev/null/registry.reg");
    EXPECT_NE(Set(*nowhere, "a"), kRegistrySuccess);

    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit before = std::exchange(limit, {10, limit.rlim_max});
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(Set(*registry, "too much"), kRegistryWriteFault);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_FALSE(fs::exists(file + ".new"));
    EXPECT_TRUE(Has("e"));
}

// As by another program within one tick of the file system's clock.
TEST_F(PosixRegistryFile, AChangeThatTheFilesTimeDoesNotShowIsNotLost) {
    const auto registry = MakePosixRegistry(file);
    ASSERT_EQ(Set(*registry, "a"), kRegistrySuccess);
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    std::string text = Text("registry.reg");
    Put("registry.reg", text.replace(text.find("\"a\""), 3, "\"c\""));
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times.data(), 0), 0);
    ASSERT_EQ(Set(*registry, "b"), kRegistrySuccess);
    EXPECT_TRUE(Has("b") && Has("c") && !Has("a"));
}

TEST_F(PosixRegistryFile, ASymbolicLinkIsWrittenThrough) {
    fs::create_directory(folder / "synced");
    fs::create_symlink("synced/mine.reg", file);
    const auto registry = MakePosixRegistry(file);
    for (const char* name : {"first", "second"}) {
        ASSERT_EQ(Set(*registry, name), kRegistrySuccess);
        EXPECT_TRUE(fs::is_symlink(file));
        EXPECT_NE(Text("synced/mine.reg").find(name), std::string::npos);
    }
}

TEST_F(PosixRegistryFile, ADamagedFileIsToldOnceAndNeverWrittenOver) {
    const std::string sound = "REGEDIT4\n\n[HKEY_CURRENT_USER\\Soft]\n\"ñ\"=\"x\"\n";
    const std::string path = folder / "ñ/registry.reg";
    const auto registry = MakePosixRegistry(path);
    for (const std::string& damage : {"?\n"s, "\"b\"=-\n"s}) {
        Put("ñ/registry.reg", sound + damage);
        try {
            Set(*registry, "a");
            ADD_FAILURE() << "not told";
        } catch (const UnreadableStore& error) {
            EXPECT_EQ(error.Description(), "Invalid file format: " + path + ", line 5");
            EXPECT_EQ(error.DamagedLine(), 5u);
        }
        EXPECT_EQ(Set(*registry, "a"), kRegistryCorrupt);
        EXPECT_EQ(Text("ñ/registry.reg"), sound + damage);
        Put("ñ/registry.reg", sound);
        EXPECT_EQ(Set(*registry, "a"), kRegistrySuccess);
        EXPECT_NE(Text("ñ/registry.reg").find("\"a\"=\"x\""), std::string::npos);
    }
    const auto device = MakePosixRegistry("/dev/null");
    EXPECT_THROW(Set(*device, "a"), UnreadableStore);
}

TEST(PosixProcessDeathTest, SignalsAndExceptionsAreNamedBeforeTheEnd) {
    const auto dying = [](auto how) {
        const auto process = MakePosixProcess(0, nullptr);
        process->InstallUnhandledExceptionFilter("Update");
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
    const auto first = MakePosixProcess(0, nullptr);
    EXPECT_FALSE(first->AnotherInstanceRuns("Update / Utility"));
    EXPECT_FALSE(first->AnotherInstanceRuns("Update / Utility"));
    const auto second = MakePosixProcess(0, nullptr);
    EXPECT_TRUE(second->AnotherInstanceRuns("Update / Utility"));
    EXPECT_FALSE(second->AnotherInstanceRuns("Monitor"));
    EXPECT_FALSE(fs::is_empty(folder.Path()));
    unsetenv("XDG_RUNTIME_DIR");
}

/// The files of posix/system.txt: "PATH TEXT", or "PATH -> TARGET" for a link.
class PosixPortList : public InFolder {
protected:
    PosixPortList() {
        const auto system = ScriptsIn(TESTS "/posix/system.txt");
        for (const std::string& line : system.at("")) {
            const Words words = WordsOf(line);
            if (words.size() == 2) Put(words[0], words[1]);
            if (words.size() == 2) continue;
            fs::create_directories(fs::path(folder / words.at(0)).parent_path());
            fs::create_symlink(words.at(2), folder / words[0]);
        }
    }
};

TEST_F(PosixPortList, HasWhatTheSystemKnowsOfEachPort) {
    const std::unique_ptr<Clock> clock = MakePosixClock();
    PosixMessagePump pump(*clock);
    const auto ports = MakePosixSerialPorts(pump, {}, folder.Path().string());
    std::string list;
    for (const SerialPortInfo& port : ports->List()) {
        list += port.name + '|' + port.description + '|' + port.usbId + '|' + port.serialNumber;
        for (const std::string& name : port.otherNames) list += '|' + name;
        list += port.latencyMs ? '|' + std::to_string(*port.latencyMs) + "\n" : "\n";
    }
    EXPECT_EQ(list,
              "COM1|some_driver||\n"
              "COM9|FTDI FT232R|0403:6001|A50285BI|usb-FTDI_A50285BI-if00|16\n"
              "COM21|Acme Modem|2341:0043|\n");
    EXPECT_EQ(ports->NameOf(folder / "dev/serial/by-id/usb-FTDI_A50285BI-if00"), "COM9");
}

}  // namespace
}  // namespace vantor
