// Behaviour of the POSIX services beyond their contracts: concurrent processes on one registry
// file, crashes and their messages, single instance, the list of ports.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "tests/TemporaryFolder.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;

RegistryResult Set(Registry& registry, const std::string& name) {
    RegistryKey key = 0;
    const RegistryResult result =
        registry.CreateKey(RegistryRoot::CurrentUser, "Soft", kRegistryAllButOwner, key);
    if (result != kRegistrySuccess) return result;
    return registry.SetValue(key, name, kRegistryString, std::string_view("x\0", 2));
}

bool Has(Registry& registry, const std::string& name) {
    RegistryKey key = 0;
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    registry.OpenKey(RegistryRoot::CurrentUser, "Soft", kRegistryQueryValue, key);
    return registry.QueryValue(key, name, type, nullptr, size) == kRegistrySuccess;
}

TEST(PosixRegistry, ProgramsThatWriteAtOnceLoseNothingOfEachOther) {
    const auto valueOf = [](int program, int i) { return std::to_string(program * 100 + i); };
    constexpr int kValues = 25;
    const TemporaryFolder folder;
    const std::string file = folder / "registry.reg";
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
    const auto registry = MakePosixRegistry(file);
    for (int i = 0; i < 4 * kValues; ++i)
        EXPECT_TRUE(Has(*registry, valueOf(i / kValues, i % kValues))) << i;
}

void Put(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path) << text;
}

/// Lets a file have so many bytes at most; without a number as many as before.
void Limit(const Words& words) {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = words.size() > 1 ? std::stoul(words[1]) : limit.rlim_max;
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
}

std::string PortsOf(const std::string& system) {
    const std::unique_ptr<Clock> clock = MakePosixClock();
    PosixMessagePump pump(*clock);
    const auto ports = MakePosixSerialPorts(pump, {}, system);
    std::string list;
    for (const SerialPortInfo& port : ports->List()) {
        list += port.name + '|' + port.description + '|' + port.usbId + '|' + port.serialNumber;
        for (const std::string& name : port.otherNames)
            list += '|' + name + '|' + ports->NameOf(system + "/dev/serial/by-id/" + name);
        list += port.latencyMs ? '|' + std::to_string(*port.latencyMs) + "\n" : "\n";
    }
    return list;
}

/// Programs of the test's folder, and the files that they find there.
class PosixPrograms : public testing::Test {
protected:
    PosixPrograms() { setenv("XDG_RUNTIME_DIR", folder.Path().c_str(), 1); }
    ~PosixPrograms() override { unsetenv("XDG_RUNTIME_DIR"); }

    const TemporaryFolder folder;
    std::map<std::string, std::unique_ptr<Registry>> registries;
    std::map<std::string, std::unique_ptr<Process>> processes;
    using W = const Words&;
    const Actions actions = {
        {"program",
         [this](W w) {
             registries[w.at(1)] = MakePosixRegistry(w.at(2));
             processes[w[1]] = MakePosixProcess(0, nullptr);
             return "";
         }},
        {"sets",
         [this](W w) {
             RegistryResult result = 0;
             const RuntimeError error =
                 Raised([&] { result = Set(*registries.at(w.at(1)), w.at(2)); });
             return error.Number() == 0 ? Row(result) : error.Description();
         }},
        {"has",
         [this](W w) {
             std::string found;
             for (std::size_t i = 2; i < w.size(); ++i)
                 if (Has(*registries.at(w[1]), w[i])) found += w[i] + " ";
             return found;
         }},
        {"another",
         [this](W w) { return FromBool(processes.at(w.at(1))->AnotherInstanceRuns(w.at(2))); }},
        {"ports", [](W w) { return PortsOf(w.at(1)); }},
        {"put", [](W w) { return Put(w.at(1), w.at(2)), ""; }},
        {"put-in-no-time",  // as by another program within one tick of the file system's clock
         [](W w) {
             const auto time = fs::last_write_time(w.at(1));
             Put(w[1], Replaced(ContentOf(w[1]), w.at(2), w.at(3)));
             return fs::last_write_time(w[1], time), "";
         }},
        {"text", [](W w) { return ContentOf(w.at(1)); }},
        {"limit", [](W w) { return Limit(w), ""; }},
        {"folder", [](W w) { return fs::create_directories(w.at(1)), ""; }},
        {"link", [](W w) { return fs::create_symlink(w.at(2), w.at(1)), ""; }},
        {"removes", [](W w) { return fs::remove(w.at(1)), ""; }},
        {"kind",
         [](W w) {
             const auto kind = fs::symlink_status(w.at(1)).type();
             return kind == fs::file_type::symlink ? "link" : fs::exists(w[1]) ? "file" : "none";
         }},
    };
};

TEST_F(PosixPrograms, LoseNothingOfTheirRegistry) {
    ExpectTable("posix/registry", actions, folder.Path().string());
}

TEST_F(PosixPrograms, KnowTheOtherInstanceOfTheirTitle) {
    ExpectTable("posix/instances", actions, folder.Path().string());
}

TEST_F(PosixPrograms, ListWhatTheSystemKnowsOfEachPort) {
    ExpectTable("posix/ports", actions, folder.Path().string());
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

}  // namespace
}  // namespace vantor
