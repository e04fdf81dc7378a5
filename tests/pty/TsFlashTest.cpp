// Tests tsflash against m40sim over a pseudo-terminal, as two processes: output on both streams,
// exit status, and the violations that m40sim reports.
#include <gmock/gmock.h>
#include <signal.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <sstream>

#include "console/Json.hpp"
#include "tests/TemporaryFolder.hpp"
#include "tests/faults/Images.hpp"
#include "tests/faults/SessionBoxes.hpp"
#include "tests/pty/Child.hpp"

namespace vantor {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kTools = TOOLS_FOLDER;

/// A message box of the window, as tsflash prints it.
std::string Printed(std::string box) {
    box.erase(0, box.find('|') + 1);
    if (box[0] == '|') box.insert(0, "Tessmar Vantor Update");
    box[box.find('|')] = '\n';
    if (const auto at = box.find(" \r\n\r\n"); at != std::string::npos) box.replace(at, 5, "\n\n");
    return box + "\n";
}

struct Ended {
    int status;
    std::string out;
    std::string err;
    std::string hint;
};

/// A temporary folder with an image, an m40sim process, and the command line of tsflash.
class TsFlashOnPty : public testing::Test {
protected:
    TsFlashOnPty() {
        setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        WriteImage(ImageOf(40));
    }

    void WriteImage(const std::string& text) { std::ofstream(image, std::ios::binary) << text; }

    /// Starts m40sim, which expects the current contents of the image.
    void StartIndicator(const std::string& options = "") {
        indicator.emplace(Words(kTools + "/m40sim --once --image " + image + " " + options));
        ASSERT_TRUE(indicator->WaitFor("\n"));
        port = indicator->Out().substr(6, indicator->Out().find('\n') - 6);
    }

    /// The command line that flashes the image, to `port` if set.
    std::vector<std::string> Command(const std::string& options = "--yes") const {
        const std::string to = port.empty() ? " " : " --port " + port + " ";
        return Words(kTools + "/tsflash" + to + options + " " + image);
    }
    /// Runs the command with --yes. On a busy machine replies may be late without a fault, so the
    /// hint at late replies is removed from `err` and returned in `hint`.
    Ended Flash(const std::string& options = "") {
        Child flash(Command("--yes " + options));
        const int status = flash.Wait();
        std::string err = flash.Err();
        const std::size_t at = err.find("The replies arrive");
        if (at == std::string::npos) return {status, flash.Out(), err, ""};
        const std::string hint = err.substr(at, err.find('\n', at) + 1 - at);
        return {status, flash.Out(), err.erase(at, hint.size()), hint};
    }

    static std::vector<std::string> Words(const std::string& text) {
        std::istringstream words(text);
        return {std::istream_iterator<std::string>(words), {}};
    }
    std::string Read(const std::string& path) const {
        std::stringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    std::string Log() const { return Read(transcript); }

    const TemporaryFolder folder;
    const std::string image = folder / "image.run";
    const std::string transcript = folder / "log.txt";
    const std::string records = folder / "records.csv";
    std::string port;
    std::optional<Child> indicator;
};

TEST_F(TsFlashOnPty, EachWayOutHasItsTextAndItsStatus) {
    const struct {
        const char* indicator;  // options of m40sim
        int status;             // of tsflash
        const char* out;
        const char* err;
    } kRows[] = {
        {"--pace --think 3", 0, kDone, ""},
        {"--latency 16 --fault nak@7x3 --fault split@9", 0, kDone, ""},
        {"--fault drop@3 --fault garble@5 --fault noise@7 --fault split@9 --fault late=300@11", 0,
         kDone, ""},
        {"--fault no-trav", 4, kNoMonitor, ""},
        {"--fault no-sysload", 4, "", kNoSysload},
        {"--fault hangup@7", 1, "", kFailure},
        {"--fault verify-failed", 5, "", kVerify}};
    for (const auto& [options, status, out, err] : kRows) {
        StartIndicator(options);
        const Ended flash = Flash();
        EXPECT_EQ(flash.status, status) << options;
        EXPECT_THAT(flash.out, HasSubstr(*out == '\0' ? "" : Printed(out))) << options;
        EXPECT_EQ(flash.err, *err == '\0' ? "" : Printed(err)) << options;
        const bool late = std::string_view(options).find("latency") != std::string_view::npos;
        EXPECT_THAT(flash.hint, HasSubstr(late ? "latency timer" : ""));
        // Status 0 only for a whole, verified, booted image.
        EXPECT_EQ(indicator->Wait(), status == 0 ? 0 : 1) << options;
        const bool hungUp = std::string_view(options) == "--fault hangup@7";
        EXPECT_EQ(indicator->Err(),
                  hungUp ? "m40sim: The terminal was hung up, as the fault asked.\n" : "")
            << "a violation of the protocol, " << options;
    }
}

TEST_F(TsFlashOnPty, TheInterruptKeyAndARequestToEndAreTheAbortButtonWhileTheSessionHasOne) {
    for (const int signal : {SIGINT, SIGTERM}) {
        StartIndicator("--think 50");
        Child flash(Command("--yes --log " + transcript));
        ASSERT_TRUE(flash.WaitFor("Line 4 of 40"));
        flash.Signal(signal);
        EXPECT_EQ(flash.Wait(), 6);
        EXPECT_EQ(flash.Err(), "Aborting...\n" + Printed(kAborted));
        EXPECT_THAT(Log(), HasSubstr(" -- lines "));
    }
}

TEST_F(TsFlashOnPty, AnInterruptIsAnsweredWithAReasonInTheFinalStage) {
    // With so many blank lines at the end, the abort button is still enabled at the last line sent.
    WriteImage(ImageOf(40) + std::string(15, '\n'));
    for (const int signal : {SIGINT, SIGTERM}) {
        StartIndicator("--write 3000");
        Child flash(Command());
        ASSERT_TRUE(flash.WaitFor("Updating Indicator"));
        flash.Signal(signal);
        EXPECT_EQ(flash.Wait(), 0);
        EXPECT_THAT(flash.Err(), HasSubstr("can no longer be aborted"));
        EXPECT_THAT(flash.Err(), Not(HasSubstr("Aborting")));
        EXPECT_EQ(indicator->Wait(), 0);
    }
}

TEST_F(TsFlashOnPty, AConnectionThatDropsEndsNoUpdate) {
    StartIndicator("--think 20");
    Child flash(Command(), Child::Output::Terminal);
    ASSERT_TRUE(flash.WaitFor("Line 4 of 40"));
    flash.HangUp();
    EXPECT_EQ(flash.Wait(), 0);
    EXPECT_EQ(indicator->Wait(), 0);
}

TEST_F(TsFlashOnPty, AMissingAndABusyPortAreTold) {
    port = folder / "no-such-device";
    const Ended missing = Flash();
    EXPECT_EQ(missing.status, 3);
    EXPECT_EQ(missing.err, Printed(kNoPort) + "There is no port " + port + ".\n");

    StartIndicator("--think 100");
    Child first(Command());
    ASSERT_TRUE(first.WaitFor("Line 4 of 40"));
    const Ended second = Flash();
    EXPECT_EQ(second.status, 3);
    EXPECT_THAT(second.err, StartsWith(Printed(kNoPort) + "The port " + port + " is in use by "));
    EXPECT_THAT(second.err, HasSubstr("tsflash ("));
    EXPECT_EQ(first.Wait(), 0);
}

TEST_F(TsFlashOnPty, AnAdapterThatVanishesIsToldOnceAndTheNextAttemptWorksWhenItIsBack) {
    const struct {
        const char* fault;
        const char* stage;
        int status;
        const char* box;
    } kRows[] = {{"no-trav=silent", "Initializing", 4, kNoMonitor},
                 {"silent@5", "Line 4 of 40", 1, kFailure},
                 {"no-verdict", "Updating Indicator", 1, kFailure}};
    const std::string device = folder / "adapter";
    for (const auto& [fault, stage, status, box] : kRows) {
        StartIndicator("--link " + device + " --fault " + fault);
        port = device;
        Child flash(Command());
        ASSERT_TRUE(flash.WaitFor(stage));
        indicator->Signal(SIGKILL);
        EXPECT_EQ(flash.Wait(), status) << stage;
        EXPECT_THAT(flash.Out() + flash.Err(), HasSubstr(Printed(box))) << stage;
        // Remove the dangling link: the pseudo-terminal may be reused by another test.
        std::filesystem::remove(device);
        EXPECT_EQ(Flash().status, 3) << "as long as it is away";

        StartIndicator("--link " + device);
        port = device;
        EXPECT_EQ(Flash().status, 0) << stage;
        EXPECT_EQ(indicator->Wait(), 0) << stage;
    }
}

TEST_F(TsFlashOnPty, TheWarningIsAskedOnTheTerminalAndWithoutOneItRefuses) {
    StartIndicator();
    Child blind(Command(""));
    EXPECT_EQ(blind.Wait(), 2);
    EXPECT_THAT(blind.Err(), HasSubstr("--yes"));

    Child declined(Command(""), Child::Output::Terminal);
    ASSERT_TRUE(declined.WaitFor("[y/N]"));
    declined.Type("n\n");
    EXPECT_EQ(declined.Wait(), 6);

    Child accepted(Command(""), Child::Output::Terminal);
    ASSERT_TRUE(accepted.WaitFor("[y/N]"));
    std::filesystem::remove(image);  // it has been read by now
    accepted.Type("y\n");
    EXPECT_EQ(accepted.Wait(), 0);
    EXPECT_THAT(accepted.Out(), HasSubstr("[####################] 100 %  Line 40 of 40"));
}

TEST_F(TsFlashOnPty, NoImageButTheExpectedOneIsASuccess) {
    const struct {
        std::string image;
        int status;
        std::string why;
    } kRows[] = {{" \r\n\r\n", 2, "no line to send"},
                 {std::string("\0\1\2\377\n\200\r", 7), 1, Printed(kFailure)},
                 {std::string(100000, 'S') + "\n" + ImageOf(3), 1, Printed(kFailure)},
                 {DataRecord(0) + "\r" + DataRecord(1) + "\r", 1, Printed(kFailure)},
                 {ImageOf(39), 5, Printed(kVerify)}};  // one data line missing
    for (const auto& [odd, status, why] : kRows) {
        WriteImage(ImageOf(40));
        StartIndicator();
        WriteImage(odd);
        const Ended flash = Flash();
        EXPECT_EQ(flash.status, status) << why;
        EXPECT_THAT(flash.err, HasSubstr(why));
    }
}

TEST_F(TsFlashOnPty, AnOverrideIsUsedAndNeverStored) {
    StartIndicator("--baud 9600");
    const Ended flash = Flash("--quiet -b 9600 --stop-bits=2 --log " + transcript);
    EXPECT_EQ(flash.status, 0);
    EXPECT_EQ(indicator->Wait(), 0);
    EXPECT_THAT(flash.out, Not(HasSubstr("Line ")));
    EXPECT_THAT(Log(), testing::ContainsRegex("opened COM[0-9]+ 9600,N,8,2\n"));
    EXPECT_THAT(Log(), HasSubstr("-> TRAV\\r\n"));
    EXPECT_THAT(Log(), HasSubstr("<- DONE"));
    EXPECT_FALSE(std::filesystem::exists(folder / "tessmar-vantor-update"));
}

TEST_F(TsFlashOnPty, WhatCannotBeMeantIsRefusedBeforeThePortIsTouched) {
    std::filesystem::create_hard_link(image, folder / "hard.txt");
    std::filesystem::create_symlink("image.run", folder / "soft.txt");
    const std::pair<std::string, const char*> rows[] = {
        {"--frobnicate", "Unknown option: --frobnicate"},
        {"--baud 14400", "--baud does not take the value '14400'"},
        {"--parity=X", "--parity does not take the value 'X'"},
        {"other.run", "one image"},
        {"--fault nak@1", "--practice"},
        {"--practice --fault nonsense@1", "nonsense@1"},
        {"--log " + (folder / "none/log.txt"), "transcript cannot be written"},
        {"--record " + (folder / "none/all.csv"), "record file cannot be written"},
        {"--record " + image, "is the image or the transcript"},
        {"--note 4711", "--record"},
        {"--port none", "There is no port none. Present: "},
        {"--port COM3 --port COM3", "given twice"},
        {"--practice=33", "--practice does not take the value '33'"},
        {"--practice=2 --log " + transcript, "--log goes with one port only"},
        {"--wait soon", "--wait does not take the value 'soon'"},
        {"--log", "one image"},  // takes the image's name as its value
        {"--log " + image, "overwrite the image"},
        {"--log " + (folder / "hard.txt"), "overwrite the image"},
        {"--log " + (folder / "soft.txt"), "overwrite the image"},
    };
    for (const auto& [options, why] : rows) {
        const Ended flash = Flash(options);
        EXPECT_EQ(flash.status, 2) << why;
        EXPECT_THAT(flash.err, HasSubstr(why));
    }
    EXPECT_EQ(Read(image), ImageOf(40));
    const std::string settings = folder / "tessmar-vantor-update/registry.reg";
    std::filesystem::create_directories(std::filesystem::path(settings).parent_path());
    std::ofstream(settings) << "REGEDIT4\nPort=COM7\n";
    const Ended damaged = Flash("--practice");
    EXPECT_EQ(damaged.status, 2);
    EXPECT_THAT(damaged.err, HasSubstr("settings file cannot be read: " + settings + ", line 2"));
    std::filesystem::remove(settings);
    port = "/dev/null";  // never a port
    std::filesystem::remove(image);
    const Ended flash = Flash();
    EXPECT_EQ(flash.status, 2);
    EXPECT_THAT(flash.err, HasSubstr("Image file not found"));
}

TEST_F(TsFlashOnPty, JsonHoldsEveryAttemptAndTheRecordTheSameCounts) {
    StartIndicator("--fault nak@7x2");
    const Ended flash = Flash("--json --record " + records + " --note 4711");
    EXPECT_EQ(flash.status, 0);
    std::istringstream out(flash.out);
    std::map<std::string, int> events;
    std::map<std::string, std::string> members;
    for (std::string line; std::getline(out, line);) {
        const auto object = JsonMembers(line);
        ASSERT_TRUE(object) << line;
        members = *object;
        ++events[members["event"]];
        EXPECT_EQ(members["port"], port);
    }
    EXPECT_EQ(events["line"], 43);
    EXPECT_EQ(events["retry"], 2);
    EXPECT_EQ(members["event"] + members["outcome"] + members["exit"] + members["resends"],
              "enddone02");
    EXPECT_THAT(Read(records), testing::EndsWith(",41,2," + members["late_replies"] + ",done,0," +
                                                 members["seconds"] + ",4711\r\n"));
}

TEST_F(TsFlashOnPty, RecordsOfParallelSessionsAreAllWhole) {
    constexpr std::size_t kSessions = 20;
    std::vector<std::unique_ptr<Child>> sessions;
    for (std::size_t i = 0; i < kSessions; ++i)
        sessions.push_back(std::make_unique<Child>(
            Command("--yes --practice --fault no-trav --record " + records)));
    for (const auto& session : sessions) EXPECT_EQ(session->Wait(), 4);
    std::istringstream lines(Read(records));
    std::string line;
    std::getline(lines, line);
    EXPECT_THAT(line, StartsWith("start,host,"));
    std::size_t count = 0;
    while (std::getline(lines, line)) {
        EXPECT_THAT(line, testing::ContainsRegex("^20.*,not-in-boot-monitor,4,[0-9.]+,\r$"));
        ++count;
    }
    EXPECT_EQ(count, kSessions);
}

TEST_F(TsFlashOnPty, SeveralPortsHaveAProcessEachAndTheWorstResultCounts) {
    const Ended lines = Flash("--practice=3 --fault no-trav --record " + records);
    EXPECT_EQ(lines.status, 4);
    for (const char* const row : {"Practice: ", "COM1: not in boot monitor (exit status 4)\n",
                                  "COM3: not in ", "Done: 0 of 3\n"})
        EXPECT_THAT(lines.out, HasSubstr(row));
    const std::string text = Read(records);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4);

    const Ended json = Flash("--practice=2 --fault no-trav --json");
    EXPECT_THAT(json.out, testing::ContainsRegex("\"port\":\"COM2\",\"outcome\":\"not-in-boot"));
    EXPECT_THAT(json.out, testing::EndsWith("\"done\":0,\"failed\":2,\"exit\":4}\n"));

    Child rows(Command("--yes --practice=2"), Child::Output::Terminal);
    ASSERT_TRUE(rows.WaitFor("] Initializing"));
    EXPECT_EQ(rows.Wait(), 0);
    EXPECT_THAT(rows.Out(), HasSubstr("COM2 [####################] done"));

    Child aborted(Command("--yes --practice=2 --fault silent@1"));
    ASSERT_TRUE(aborted.WaitFor("COM2: 0 %"));
    aborted.Signal(SIGINT);
    EXPECT_EQ(aborted.Wait(), 6);
    EXPECT_THAT(aborted.Out(), HasSubstr("COM1: aborted"));
}

TEST_F(TsFlashOnPty, AWaitEndsWhenTheIndicatorAnswersWhenItIsOverAndByTheInterruptKey) {
    port = folder / "adapter";
    EXPECT_EQ(Flash("--wait 1").status, 3);
    Child flash(Command("--yes --wait 60"));
    ASSERT_TRUE(flash.WaitFor("Waiting for the port"));
    const Child late({kTools + "/m40sim", "--image", image, "--link", port});
    EXPECT_EQ(flash.Wait(), 0);

    Child units(Command("--yes --repeat --quiet"), Child::Output::Terminal);
    ASSERT_TRUE(units.WaitFor("Indicator 1: done"));
    units.Type("\n");
    ASSERT_TRUE(units.WaitFor("Indicator 2: done"));
    units.Type("\x03");
    EXPECT_EQ(units.Wait(), 0);
    EXPECT_THAT(units.Out(), HasSubstr("Done: 2, failed: 0"));
}

TEST_F(TsFlashOnPty, ADamagedImageIsToldBeforeTheUpdateAndRefusedWhenStrict) {
    EXPECT_EQ(Flash("--check").status, 0);
    WriteImage(ImageOf(40).substr(0, 300));
    EXPECT_EQ(Flash("--check").status, 2);
    const Ended strict = Flash("--practice --strict");
    EXPECT_EQ(strict.status, 2);
    EXPECT_THAT(strict.err, HasSubstr("Suspicious: there is no end record"));
    const Ended told = Flash("--practice --fault no-trav");
    EXPECT_EQ(told.status, 4);
    EXPECT_THAT(told.err, HasSubstr("Suspicious: there is no end record"));
}

TEST_F(TsFlashOnPty, PracticeNeedsNoHardwareAndRehearsesFailures) {
    const Ended whole = Flash("--practice");
    EXPECT_EQ(whole.status, 0);
    EXPECT_THAT(whole.out, HasSubstr(Printed(kDone)));
    const Ended failing = Flash("--practice --fault verify-failed");
    EXPECT_EQ(failing.status, 5);
    EXPECT_EQ(failing.err, Printed(kVerify));
}

}  // namespace
}  // namespace vantor
