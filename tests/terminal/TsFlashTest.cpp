// tsflash against m40sim over a pseudo-terminal, as two programs: what is printed, where, the
// exit status, and what the indicator says of its side.
#include <gmock/gmock.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "tests/Images.hpp"
#include "tests/terminal/Child.hpp"

namespace vantor {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kTools = TOOLS_FOLDER;

const char* const kDone =
    "Flash Update Successful\nProgram Download Complete. Check the indicator for additional "
    "progress messages.\n";
const char* const kNoPort =
    "Tessmar Vantor Update\nUnable to open communications port. Check your settings and try "
    "again.\n";
const char* const kNoMonitor =
    "Tessmar Vantor Update\nPlace indicator into boot monitor mode and try again.\n";
const char* const kNoSysload = "Tessmar Vantor Update\nUnable to initiate System Load.\n";
const char* const kFailure =
    "Update Failure\nFlash Update Failure. Cycle power on the indicator. Please try the update "
    "again before calling technical support.\n";
const char* const kAborted =
    "Update Aborted\nFlash Update Aborted. Cycle power on the indicator.\n";
const char* const kVerify =
    "Critical Error!\nCritical Flash Update Failure!\n\nIt is recommended that you return the "
    "indicator to Tessmar Instruments for repair.\n";

/// A folder of its own for each test, and the two programs in it.
class OverATerminal : public testing::Test {
protected:
    OverATerminal() {
        std::string pattern = std::filesystem::temp_directory_path() / "tsflash-XXXXXX";
        folder = mkdtemp(pattern.data());
        setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
        setenv("LC_ALL", "C.UTF-8", 1);
    }
    ~OverATerminal() override { std::filesystem::remove_all(folder); }

    std::string WriteImage(const std::string& text) {
        std::ofstream(folder + "/image.run", std::ios::binary) << text;
        return folder + "/image.run";
    }

    /// Starts the indicator; it expects the image of the test.
    void StartIndicator(std::vector<std::string> options) {
        std::vector<std::string> arguments = {kTools + "/m40sim", "--once", "--image",
                                              folder + "/image.run"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        indicator.emplace(arguments);
        ASSERT_TRUE(indicator->WaitFor("\n"));
        port = indicator->Out().substr(6, indicator->Out().find('\n') - 6);
    }

    std::vector<std::string> FlashArguments(std::vector<std::string> options = {"--yes"}) {
        std::vector<std::string> arguments = {kTools + "/tsflash", "--port", port};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back(folder + "/image.run");
        return arguments;
    }

    std::string folder;
    std::string port;
    std::optional<Child> indicator;
};

struct Row {
    const char* name;
    std::vector<std::string> indicator;  // its options
    int status;                          // of tsflash
    int indicatorStatus;                 // of m40sim: 0 only for a whole, verified, booted image
    std::string out;
    std::string err;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

class StateTable : public OverATerminal, public testing::WithParamInterface<Row> {};

TEST_P(StateTable, EachWayOutHasItsTextAndItsStatus) {
    const Row& row = GetParam();
    WriteImage(ImageOf(40));
    StartIndicator(row.indicator);
    Child flash(FlashArguments());
    EXPECT_EQ(flash.Wait(), row.status);
    EXPECT_THAT(flash.Out(), HasSubstr(row.out));
    EXPECT_EQ(flash.Err(), row.err);
    EXPECT_EQ(indicator->Wait(), row.indicatorStatus);
    EXPECT_EQ(indicator->Err().find("violation"), std::string::npos) << indicator->Err();
}

INSTANTIATE_TEST_SUITE_P(
    TsFlash, StateTable,
    testing::Values(
        Row{"Done", {}, 0, 0, kDone, ""},
        Row{"DonePaced", {"--pace", "--think", "3"}, 0, 0, kDone, ""},
        Row{"NotInBootMonitor", {"--fault", "no-trav"}, 4, 1, kNoMonitor, ""},
        Row{"NotInBootMonitorSilent", {"--fault", "no-trav=silent"}, 4, 1, kNoMonitor, ""},
        Row{"SpeedRefused", {"--fault", "no-baud"}, 0, 0, kDone, ""},
        Row{"SystemLoadRefused", {"--fault", "no-sysload"}, 4, 1, "", kNoSysload},
        Row{"RefusedFourTimes", {"--fault", "nak@7x4"}, 1, 1, "", kFailure},
        Row{"RefusedThreeTimes", {"--fault", "nak@7x3", "--fault", "split@9"}, 0, 0, kDone, ""},
        Row{"ByteLost", {"--fault", "drop@7"}, 0, 0, kDone, ""},
        Row{"HangUp", {"--fault", "hangup@7"}, 1, 1, "", kFailure},
        Row{"VerifyFailed", {"--fault", "verify-failed"}, 5, 1, "", kVerify},
        Row{"VerdictInPieces", {"--fault", "split-verdict"}, 0, 0, kDone, ""},
        Row{"NoVerdict", {"--fault", "no-verdict"}, 1, 1, "", kFailure}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(OverATerminal, ALineThatIsLostForGoodIsNeverASuccess) {
    // The indicator expects one record more than the file has: as if it had never arrived.
    WriteImage(ImageOf(41));
    StartIndicator({});
    WriteImage(ImageOf(40));
    Child flash(FlashArguments());
    EXPECT_EQ(flash.Wait(), 5);
    EXPECT_EQ(flash.Err(), kVerify);
    EXPECT_EQ(indicator->Wait(), 1);
}

TEST_F(OverATerminal, TheInterruptKeyIsTheAbortButtonWhileTheSessionHasOne) {
    WriteImage(ImageOf(40));
    StartIndicator({"--think", "50"});
    Child flash(FlashArguments());
    ASSERT_TRUE(flash.WaitFor("Line 4 of 40"));
    flash.Signal(SIGINT);
    EXPECT_EQ(flash.Wait(), 6);
    EXPECT_EQ(flash.Err(), std::string("Aborting...\n") + kAborted);
}

TEST_F(OverATerminal, TheInterruptKeyIsAnsweredWithAReasonInTheFinalPhase) {
    WriteImage(ImageOf(40));
    StartIndicator({"--write", "3000"});
    Child flash(FlashArguments());
    ASSERT_TRUE(flash.WaitFor("Updating Indicator"));
    flash.Signal(SIGINT);
    EXPECT_EQ(flash.Wait(), 0);
    EXPECT_THAT(flash.Err(), HasSubstr("can no longer be aborted"));
    EXPECT_EQ(indicator->Wait(), 0);
}

TEST_F(OverATerminal, AMissingAndABusyPortAreTold) {
    WriteImage(ImageOf(40));
    port = folder + "/no-such-device";
    Child missing(FlashArguments());
    EXPECT_EQ(missing.Wait(), 3);
    EXPECT_EQ(missing.Err(), kNoPort);

    StartIndicator({"--think", "100"});
    Child first(FlashArguments());
    ASSERT_TRUE(first.WaitFor("Line 4 of 40"));
    Child second(FlashArguments());
    EXPECT_EQ(second.Wait(), 3);
    EXPECT_EQ(second.Err(), kNoPort);
    EXPECT_EQ(first.Wait(), 0);
}

TEST_F(OverATerminal, TheWarningIsAskedOnTheTerminalAndWithoutOneItRefuses) {
    WriteImage(ImageOf(40));
    StartIndicator({});
    Child blind(FlashArguments({}));
    EXPECT_EQ(blind.Wait(), 2);
    EXPECT_THAT(blind.Err(), HasSubstr("--yes"));

    Child declined(FlashArguments({}), Child::Output::Terminal);
    ASSERT_TRUE(declined.WaitFor("[y/N]"));
    declined.Type("n\n");
    EXPECT_EQ(declined.Wait(), 6);

    Child accepted(FlashArguments({}), Child::Output::Terminal);
    ASSERT_TRUE(accepted.WaitFor("[y/N]"));
    accepted.Type("y\n");
    EXPECT_EQ(accepted.Wait(), 0);
    EXPECT_THAT(accepted.Out(), HasSubstr("[####################] 100 %  Line 40 of 40"));
}

TEST_F(OverATerminal, ImagesThatCannotBeSentAreRefusedBeforeThePortIsTouched) {
    const std::pair<std::string, const char*> rows[] = {{"", "no line to send"},
                                                        {"   \r\n\r\n", "no line to send"}};
    for (const auto& [text, why] : rows) {
        WriteImage(text);
        Child flash(FlashArguments());
        EXPECT_EQ(flash.Wait(), 2);
        EXPECT_THAT(flash.Err(), HasSubstr(why));
    }
    std::filesystem::remove(folder + "/image.run");
    Child flash(FlashArguments());
    EXPECT_EQ(flash.Wait(), 2);
    EXPECT_THAT(flash.Err(), HasSubstr("Image file not found"));
}

TEST_F(OverATerminal, OddImagesAreRefusedByTheIndicatorAndNeverASuccess) {
    const std::string images[] = {std::string(100000, 'S') + "\n" + ImageOf(3),
                                  std::string("\0\1\2\377\n\200\r", 7),
                                  DataRecord(0) + "\r" + DataRecord(1) + "\r"};
    for (const std::string& image : images) {
        WriteImage(ImageOf(40));
        StartIndicator({});
        WriteImage(image);
        Child flash(FlashArguments());
        EXPECT_EQ(flash.Wait(), 1);
        EXPECT_THAT(flash.Err(), HasSubstr(kFailure));
    }
}

TEST_F(OverATerminal, AnOverrideIsUsedAndNeverStored) {
    WriteImage(ImageOf(40));
    StartIndicator({"--baud", "9600"});
    Child flash(FlashArguments(
        {"--yes", "--quiet", "-b", "9600", "--stop-bits=2", "--log", folder + "/log.txt"}));
    EXPECT_EQ(flash.Wait(), 0);
    EXPECT_EQ(indicator->Wait(), 0);
    EXPECT_THAT(flash.Out(), Not(HasSubstr("Line ")));
    std::stringstream log;
    log << std::ifstream(folder + "/log.txt").rdbuf();
    EXPECT_THAT(log.str(), testing::ContainsRegex("opened COM[0-9]+ 9600,N,8,2\n"));
    EXPECT_THAT(log.str(), HasSubstr("-> TRAV\\r\n"));
    EXPECT_THAT(log.str(), HasSubstr("<- DONE"));
    EXPECT_FALSE(std::filesystem::exists(folder + "/tessmar-vantor-update"));
}

TEST_F(OverATerminal, BadOptionsAreUsageErrorsWithASentence) {
    WriteImage(ImageOf(40));
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"--frobnicate"}, "Unknown option: --frobnicate"},
        {{"--baud", "14400"}, "--baud does not take the value '14400'"},
        {{"--stop-bits", "3"}, "--stop-bits does not take the value '3'"},
        {{"--parity=X"}, "--parity does not take the value 'X'"},
        {{"--fault", "nak@1"}, "--practice"},
        {{"--practice", "--fault", "nonsense@1"}, "nonsense@1"},
        {{"--log", folder + "/none/log.txt"}, "transcript cannot be written"},
        {{"other.run"}, "one image"},
        {{"--log"}, "one image"},  // takes the image's name as its value
    };
    for (const auto& [options, why] : rows) {
        std::vector<std::string> arguments = {kTools + "/tsflash", "--yes"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back(folder + "/image.run");
        Child flash(arguments);
        EXPECT_EQ(flash.Wait(), 2) << why;
        EXPECT_THAT(flash.Err(), HasSubstr(why));
    }
}

TEST_F(OverATerminal, PracticeNeedsNoHardwareAndRehearsesFailures) {
    WriteImage(ImageOf(40));
    Child whole({kTools + "/tsflash", "--yes", "--practice", folder + "/image.run"});
    EXPECT_EQ(whole.Wait(), 0);
    EXPECT_THAT(whole.Out(), HasSubstr(kDone));
    Child failing({kTools + "/tsflash", "--yes", "--practice", "--fault", "verify-failed",
                   folder + "/image.run"});
    EXPECT_EQ(failing.Wait(), 5);
    EXPECT_EQ(failing.Err(), kVerify);
}

TEST_F(OverATerminal, ATerminalThatSpeaksSpanishGetsSpanish) {
    setenv("LC_ALL", "es_ES.UTF-8", 1);
    WriteImage(ImageOf(40));
    StartIndicator({"--fault", "no-trav"});
    Child flash(FlashArguments());
    EXPECT_EQ(flash.Wait(), 4);
    EXPECT_THAT(flash.Out(), HasSubstr("¿Desea continuar?"));
}

}  // namespace
}  // namespace vantor
