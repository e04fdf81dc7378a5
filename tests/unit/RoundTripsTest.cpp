// When tsflash reports late replies, and how a transcript ends: the decision on numbers,
// and the whole program on virtual time with an adapter in its line.
#include "console/RoundTrips.hpp"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>
#include <tuple>
#include <utility>

#include "console/TsFlash.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "simulator/LatencyTimer.hpp"
#include "tests/TemporaryFolder.hpp"
#include "tests/faults/Images.hpp"

namespace vantor {
namespace {

using testing::EndsWith;

// --- the decision ------------------------------------------------------------------------------

struct Replies {
    const char* name;
    LineSettings line;
    std::vector<std::pair<int, std::uint32_t>> roundTrips;  // count, milliseconds
    std::optional<std::int64_t> latenessMs;
};

class Lateness : public testing::TestWithParam<Replies> {};

TEST_P(Lateness, IsTheMedianBeyondTheWireOfTheFirstReplies) {
    HeadlessClock clock;
    RoundTrips trips(clock);
    trips.Opened("COM1", GetParam().line);
    const auto exchange = [&](std::string_view line, std::uint32_t ms) {
        trips.Sent(line);
        clock.Sleep(ms);
        trips.Received("OK\r\n");
        trips.Discarded("DONE");  // a verdict that is discarded ends nothing
    };
    exchange("TRAV\r", 900);
    exchange("SYSLOAD\r", 900);
    for (const auto& [count, ms] : GetParam().roundTrips)
        for (int i = 0; i < count; ++i) exchange("S10DFFF0112233445566\r", ms);
    EXPECT_EQ(trips.TakeLateness(), GetParam().latenessMs);
    EXPECT_EQ(trips.TakeLateness(), std::nullopt);
}

// 21 characters out and 3 back: 25 ms at 9600 bit/s with 10 bits a character, 30 with 12.
constexpr LineSettings k9600{9600, Parity::None, 8, 1};

INSTANTIATE_TEST_SUITE_P(
    RoundTrips, Lateness,
    testing::Values(Replies{"AtTheLimit", k9600, {{21, 33}}, 8},
                    Replies{"BelowTheLimit", k9600, {{21, 32}}, {}},
                    Replies{"LongerCharacters", {9600, Parity::Even, 8, 2}, {{21, 37}}, {}},
                    Replies{"TenOddOnes", k9600, {{10, 500}, {11, 27}}, {}},
                    Replies{"ElevenLateOnes", k9600, {{10, 25}, {11, 41}}, 16},
                    Replies{"TooFew", k9600, {{20, 60}}, {}},
                    Replies{"OnlyTheFirst", k9600, {{21, 27}, {50, 60}}, {}}),
    [](const auto& row) { return std::string(row.param.name); });

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

/// An indicator connected by a USB adapter.
struct Adapter : IndicatorFarEnd {
    Adapter(VirtualIndicator& indicator, const Clock& time, Micros latency)
        : IndicatorFarEnd(indicator, time), clock(time), timer(latency) {}
    std::string Transmit() override {
        return timer.Pass(IndicatorFarEnd::Transmit(), Micros{clock.Milliseconds()} * 1000);
    }
    const Clock& clock;
    LatencyTimer timer;
};

struct LineCase {
    const char* name = "";
    Micros latency = 0;
    const char* fault = "";
    ExitStatus status = ExitStatus::Done;
    const char* lateness = "";  // as in the hint; empty: no hint
    const char* lines = "";     // as in the summary
    const char* replies = "";
    const char* wire = "";
};

/// Runs tsflash on virtual time with `arguments` for the image "m40.run" behind COM1. Returns its
/// exit status, its standard error and requests to the system, and its duration.
std::tuple<ExitStatus, std::string, std::uint32_t> Flash(
    const LineCase& lineCase, std::vector<std::string> arguments,
    std::unique_ptr<StringTable> strings = std::make_unique<CompiledStrings>(Language::English)) {
    IndicatorOptions options;
    options.paced = true;
    options.faults = {ParseFault(lineCase.fault)};
    options.expected = FlashMemory::FromRecords(ImageOf(40));
    VirtualIndicator indicator(std::move(options));
    NativePlatform native;
    auto process = std::make_unique<HeadlessProcess>();
    process->arguments = std::move(arguments);
    native.process = std::move(process);
    auto clock = std::make_unique<HeadlessClock>();
    auto pump = std::make_unique<HeadlessPump>(*clock);
    auto ports = std::make_unique<HeadlessSerialPorts>(*pump);
    Adapter adapter(indicator, *clock, lineCase.latency);
    ports->Plug("COM1", adapter);
    native.clock = std::move(clock);
    native.pump = std::move(pump);
    native.ports = std::move(ports);
    auto files = std::make_unique<HeadlessFiles>();
    files->Add("m40.run", ImageOf(40));
    native.files = std::move(files);
    native.folders = std::make_unique<HeadlessFolders>();
    native.registry = std::make_unique<RegistryHive>();
    native.codePage = std::make_unique<CodePage1252>();
    native.strings = std::move(strings);
    auto console = std::make_unique<PipedConsole>();
    const PipedConsole& shown = *console;
    native.console = std::move(console);
    const std::uint32_t start = native.clock->Milliseconds();
    const ExitStatus status = RunTsFlash(native);
    return {status, shown.errors, native.clock->Milliseconds() - start};
}

TEST(TsFlash, AnErrorInMidStreamIsToldByTheErrorHandlerAndIsNoneOfUsage) {
    struct WithoutLine : CompiledStrings {
        using CompiledStrings::CompiledStrings;
        std::string LoadResString(std::int32_t id) const override {
            if (id == 816) throw RuntimeError(ErrorNumber::ResourceNotFound);
            return CompiledStrings::LoadResString(id);
        }
    };
    const auto [status, errors, tookMs] = Flash({.fault = "nak@7x3"}, {"--yes", "m40.run"},
                                                std::make_unique<WithoutLine>(Language::English));
    EXPECT_EQ(status, ExitStatus::UpdateFailure);
    EXPECT_EQ(errors,
              "held: Updating Indicator\n\aTessmar Vantor Update\nThe following error has occurred "
              "in procedure:\nfrmMain.FlashIndicator on line 0\nError (326) Resource not found\n"
              "held: \n");
}

class Transcripts : public testing::TestWithParam<LineCase> {};

TEST_P(Transcripts, EndWithASummaryHoweverTheSessionEnds) {
    const LineCase& lineCase = GetParam();
    const TemporaryFolder folder;
    std::vector<std::string> arguments = {"--yes", "--log", folder / "log.txt", "m40.run"};
    // --quiet does not suppress the hint. The abort at 50 % needs the progress output.
    if (lineCase.status != ExitStatus::Aborted) arguments.emplace_back("--quiet");
    const auto [status, errors, tookMs] = Flash(lineCase, arguments);
    EXPECT_EQ(status, lineCase.status);
    const std::size_t hint = errors.find("The replies arrive ");
    EXPECT_EQ(hint == std::string::npos ? "" : errors.substr(hint + 19, 5), lineCase.lateness);

    std::stringstream log;
    log << std::ifstream(folder / "log.txt").rdbuf();
    const std::string total = std::to_string(tookMs);
    const std::string mark = "\n" + std::string(8 - total.size(), ' ') + total + " -- ";
    EXPECT_THAT(log.str(),
                EndsWith(mark + "closed" + mark + "lines " + lineCase.lines + mark + "round trip" +
                         lineCase.replies + mark + "wire time both ways " + lineCase.wire +
                         ", total time " + total + " ms\n"));
}

INSTANTIATE_TEST_SUITE_P(
    TsFlash, Transcripts,
    testing::Values(
        LineCase{"Held", 16000, "nak@7x3", ExitStatus::Done, "16 ms",
                 "41, acknowledged 41, retries 3", " median 18 ms, maximum 18 ms, replies 44",
                 "89 ms"},
        LineCase{"Silent", 0, "silent@7", ExitStatus::Done, "", "41, acknowledged 41, retries 1",
                 " median 2 ms, maximum 2 ms, replies 41", "85 ms"},
        LineCase{"Verdict", 0, "done@7", ExitStatus::Done, "", "41, acknowledged 40, retries 0",
                 " median 2 ms, maximum 2 ms, replies 41", "84 ms"},
        LineCase{"Refused", 0, "nak@7x4", ExitStatus::UpdateFailure, "",
                 "8, acknowledged 7, retries 3", " median 2 ms, maximum 2 ms, replies 11", "29 ms"},
        LineCase{"Interrupted", 0, "late=40@7", ExitStatus::Aborted, "",
                 "21, acknowledged 20, retries 0", " median 2 ms, maximum 42 ms, replies 20",
                 "47 ms"},
        LineCase{"NotReady", 0, "no-trav", ExitStatus::NotReady, "", "0, acknowledged 0, retries 0",
                 ": no replies", "3 ms"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace vantor
