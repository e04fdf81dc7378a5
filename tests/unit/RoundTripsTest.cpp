// When tsflash reports late replies, and how a transcript ends: the decision on numbers,
// and the whole program on virtual time with an adapter in its line.
#include "console/RoundTrips.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "console/TsFlash.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "simulator/LatencyTimer.hpp"
#include "support/LineSettings.hpp"
#include "tests/faults/Images.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

// --- the decision ------------------------------------------------------------------------------

TEST(RoundTrips, TheLatenessIsTheMedianBeyondTheWireOfTheFirstReplies) {
    ExpectTable("lateness", [](const Words& words) {
        HeadlessClock clock;
        RoundTrips trips(clock);
        trips.Opened("COM1", ParseLineSettings(words.at(0)));
        const auto exchange = [&](std::string_view line, std::uint32_t ms) {
            trips.Sent(line);
            clock.Sleep(ms);
            trips.Received("OK\r\n");
            trips.Discarded("DONE");  // a verdict that is discarded ends nothing
        };
        exchange("TRAV\r", 900);
        exchange("SYSLOAD\r", 900);
        for (std::size_t at = 1; at < words.size(); at += 2)
            for (int i = 0; i < std::stoi(words[at]); ++i)
                exchange("S10DFFF0112233445566\r",
                         static_cast<std::uint32_t>(std::stoul(words.at(at + 1))));
        const auto lateness = trips.TakeLateness();
        EXPECT_EQ(trips.TakeLateness(), std::nullopt);
        return lateness ? Row(*lateness) : "none";
    });
}

// --- the program -------------------------------------------------------------------------------

/// No keyboard, no screen. Presses the interrupt key when the output shows 50 %.
struct PipedConsole : Console {
    bool InputIsTerminal() const override { return false; }
    bool OutputIsTerminal() const override { return false; }
    unsigned Columns() const override { return 80; }
    void Write(std::string_view text) override {
        pressed |= text.find(" 50 %") != std::string_view::npos;
    }
    void WriteError(std::string_view text) override { errors += text; }
    std::optional<std::string> ReadLine() override { return {}; }
    bool TakeInterrupt() override { return std::exchange(pressed, false); }
    void HoldSystem(const std::string& reason) override { errors += "held: " + reason + "\n"; }

    std::string errors;
    bool pressed = false;
};

/// An indicator connected by a USB adapter; with a negative latency a device that only sends.
struct Adapter : IndicatorFarEnd {
    Adapter(VirtualIndicator& indicator, const Clock& time, Micros latency)
        : IndicatorFarEnd(indicator, time), clock(time), timer(latency), sends(latency < 0) {}
    std::string Transmit() override {
        if (sends) return "OK ";
        return timer.Pass(IndicatorFarEnd::Transmit(), Micros{clock.Milliseconds()} * 1000);
    }
    const Clock& clock;
    LatencyTimer timer;
    bool sends;
};

/// Ports of which the first is called "late" as well, from 8 s on.
struct LatePorts : HeadlessSerialPorts {
    LatePorts(HeadlessPump& pump, const Clock& time) : HeadlessSerialPorts(pump), clock(time) {}
    std::vector<SerialPortInfo> List() const override {
        std::vector<SerialPortInfo> ports = HeadlessSerialPorts::List();
        if (clock.Milliseconds() >= 8000) ports.at(0).serialNumber = "late";
        return ports;
    }
    const Clock& clock;
};

/// All texts but one.
struct Incomplete : CompiledStrings {
    explicit Incomplete(std::int32_t without)
        : CompiledStrings(Language::English), mWithout(without) {}
    std::string LoadResString(std::int32_t id) const override {
        if (id == mWithout) throw RuntimeError(ErrorNumber::ResourceNotFound);
        return CompiledStrings::LoadResString(id);
    }
    const std::int32_t mWithout;
};

/// Runs tsflash on virtual time: the latency of the adapter, a fault of the indicator, the number
/// of a missing text, options. Returns the exit status, the duration, standard error with the
/// requests to the system, and the end of the transcript.
std::string Flash(const Words& words) {
    IndicatorOptions options;
    options.paced = true;
    options.faults = {ParseFault(words.at(1))};
    options.expected = FlashMemory::FromRecords(ImageOf(40));
    VirtualIndicator indicator(std::move(options));
    NativePlatform native;
    auto process = std::make_unique<HeadlessProcess>();
    process->arguments = {"--yes", "--log", "log.txt", "m40.run"};
    process->arguments.insert(process->arguments.end(), words.begin() + 3, words.end());
    native.process = std::move(process);
    auto clock = std::make_unique<HeadlessClock>();
    auto pump = std::make_unique<HeadlessPump>(*clock);
    auto ports = std::make_unique<LatePorts>(*pump, *clock);
    Adapter adapter(indicator, *clock, std::stoll(words.at(0)) * 1000);
    ports->Plug("COM1", adapter);
    native.clock = std::move(clock);
    native.pump = std::move(pump);
    native.ports = std::move(ports);
    auto files = std::make_unique<HeadlessFiles>();
    files->Add("m40.run", ImageOf(40));
    native.files = std::move(files);
    auto folders = std::make_unique<HeadlessFolders>();
    folders->home.clear();
    native.folders = std::move(folders);
    native.registry = std::make_unique<RegistryHive>();
    native.codePage = std::make_unique<CodePage1252>();
    native.strings = std::make_unique<Incomplete>(std::stoi(words.at(2)));
    auto console = std::make_unique<PipedConsole>();
    const PipedConsole& shown = *console;
    native.console = std::move(console);
    const std::uint32_t start = native.clock->Milliseconds();
    const auto status = static_cast<int>(RunTsFlash(native));
    EXPECT_FALSE(native.files->Exists("C:\\ERRORS.TXT"));
    const std::string log = native.files->ReadAll("log.txt");
    return Row(status, native.clock->Milliseconds() - start) + "\n" + shown.errors +
           log.substr(log.rfind('\n', log.rfind(" -- closed")) + 1);
}

TEST(TsFlash, EndsWithAStatusAMessageAndASummaryOfTheTranscript) {
    ExpectTable("transcripts", Flash);
}

}  // namespace
}  // namespace vantor
