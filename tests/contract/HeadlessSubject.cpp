// The platform in memory, which runs on every machine.
#include "platform/headless/HeadlessPlatform.hpp"
#include "tests/contract/Contract.hpp"
#include "tests/unit/Wire.hpp"

namespace vantor::contract {
namespace {

class MemoryWire : public Wire, public WireEnd {
public:
    void Opened(const LineSettings&) override { sent.clear(); }
    using Wire::Receive;

    void Send(std::string_view bytes) override { sent += bytes; }
    std::string Receive() override { return std::exchange(received, {}); }
    void HangUp() override { gone = true; }
};

/// A round trip through the text form, on which the stored registries depend.
std::unique_ptr<Registry> Restarted(Registry& old) {
    auto hive = std::make_unique<RegistryHive>();
    EXPECT_EQ(hive->Import(static_cast<RegistryHive&>(old).Export()), 0u);
    return hive;
}

}  // namespace

void MakeHeadless(Subject& subject) {
    auto clock = std::make_unique<HeadlessClock>();
    auto pump = std::make_unique<HeadlessPump>(*clock);
    auto ports = std::make_unique<HeadlessSerialPorts>(*pump);
    auto wire = std::make_unique<MemoryWire>();
    ports->Plug(subject.portName, *wire);
    ports->LimitWrites(1000);
    subject.clock = std::move(clock);
    subject.codePage = std::make_unique<CodePage1252>();
    subject.strings = std::make_unique<CompiledStrings>(Language::English);
    subject.files = std::make_unique<HeadlessFiles>();
    subject.folder = "C:\\Test";
    subject.files->CreateFolders(subject.folder);
    subject.registry = std::make_unique<RegistryHive>();
    subject.restarted = Restarted;
    subject.pump = std::move(pump);
    subject.ports = std::move(ports);
    subject.farEnd = std::move(wire);
}

}  // namespace vantor::contract
