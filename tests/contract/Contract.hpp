// Fixture of all contract suites. Each suite runs on the services of the headless platform and on
// those of the system.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/ChildProcesses.hpp"
#include "platform/Clock.hpp"
#include "platform/CodePage.hpp"
#include "platform/Files.hpp"
#include "platform/Machine.hpp"
#include "platform/MessagePump.hpp"
#include "platform/Process.hpp"
#include "platform/Registry.hpp"
#include "platform/SerialPort.hpp"
#include "platform/SharedFiles.hpp"
#include "platform/portable/CompiledStrings.hpp"
#include "tests/TemporaryFolder.hpp"
#include "tests/unit/Table.hpp"

namespace vantor::contract {

/// The far end of the serial line.
class WireEnd {
public:
    virtual ~WireEnd() = default;
    virtual void Send(std::string_view bytes) = 0;
    /// What has arrived from the port by now.
    virtual std::string Receive() = 0;
    /// Removes the device while the port is open.
    virtual void HangUp() = 0;
};

/// The services of one platform.
struct Subject {
    std::unique_ptr<Clock> clock;
    std::unique_ptr<CodePage> codePage;
    std::unique_ptr<StringTable> strings;
    Language language = Language::English;  ///< of `strings`
    TemporaryFolder host;
    std::unique_ptr<Files> files;
    std::string folder = host.Path().string();  ///< empty at first
    std::unique_ptr<Registry> registry;
    /// The stored data as a restarted program finds it; invalidates the old registry.
    std::function<std::unique_ptr<Registry>(Registry& old)> restarted;
    std::unique_ptr<MessagePump> pump;
    std::unique_ptr<SerialPorts> ports;
    std::string portName = "COM1";
    std::unique_ptr<WireEnd> farEnd;  ///< of `portName`; null if nothing is connected to it
};

/// The services that concern other processes; only systems have them.
struct ProcessServices {
    std::unique_ptr<Process> process;  ///< this one
    std::unique_ptr<ChildProcesses> children;
    std::unique_ptr<SharedFiles> sharedFiles;
    std::unique_ptr<Clock> clock;
    std::unique_ptr<Machine> machine;
};
ProcessServices MakeProcessServices();

void MakeHeadless(Subject& subject);
void MakeNative(Subject& subject);

/// Its parameter makes the services of one platform.
class Contract : public testing::TestWithParam<void (*)(Subject&)>, protected Subject {
protected:
    Contract() { GetParam()(*this); }
};

#define INSTANTIATE_CONTRACT(suite)                                                    \
    INSTANTIATE_TEST_SUITE_P(                                                          \
        Of, suite, testing::Values(MakeHeadless, MakeNative), [](const auto& tested) { \
            return std::string(tested.param == MakeHeadless ? "Headless" : "Native");  \
        })

}  // namespace vantor::contract
