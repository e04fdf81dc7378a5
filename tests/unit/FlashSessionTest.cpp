// Whole sessions against the virtual indicator, on virtual time: the messages to the user,
// the indicator's memory afterwards, and the final state of the window.
#include "flash/FlashSession.hpp"

#include <gmock/gmock.h>

#include <functional>

#include "tests/faults/SessionBoxes.hpp"
#include "tests/unit/SessionFixture.hpp"

namespace vantor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// --- duration of a session; its other outcomes are in the fault matrix ------------------------

using enum FlashOutcome;

struct SessionCase {
    const char* name;
    std::vector<std::string> faults;
    const char* box;
    FlashOutcome outcome;
    bool memoryWhole;
    std::int32_t leastMs;  // minimum virtual time
    std::int32_t mostMs;
};

class SessionCases : public SessionFixture, public testing::WithParamInterface<SessionCase> {};

TEST_P(SessionCases, EndWithTheirOwnReportAndLeaveTheWindowReady) {
    const SessionCase& sessionCase = GetParam();
    const std::string image = ImageOf(30);
    Connect(image, sessionCase.faults);
    const std::int32_t start = headless.clock.Ticks();
    Flash();
    const std::int32_t took = headless.clock.Ticks() - start;

    EXPECT_THAT(Boxes(), ElementsAre(sessionCase.box));
    EXPECT_EQ(window->Session().Outcome(), sessionCase.outcome);
    EXPECT_EQ(MemoryIs(image), sessionCase.memoryWhole);
    EXPECT_EQ(indicator->Booted(), sessionCase.outcome == Done);
    EXPECT_THAT(indicator->Violations(), IsEmpty());
    EXPECT_TRUE(sessionCase.leastMs <= took && took <= sessionCase.mostMs) << took;
}

INSTANTIATE_TEST_SUITE_P(
    FlashSession, SessionCases,
    testing::Values(
        SessionCase{"Clean", {}, kDone, Done, true, 5000, 9000},
        SessionCase{
            "NoReply", {"no-trav=silent"}, kNoMonitor, NotInBootMonitor, false, 20000, 20100},
        SessionCase{"SilentFourTimes", {"silent@7x4"}, kFailure, LineRefused, false, 84000, 85000},
        SessionCase{"LateButInTime", {"late=19000@7"}, kDone, Done, true, 24000, 30000},
        SessionCase{"NoVerdict", {"no-verdict"}, kFailure, NoVerdict, true, 64000, 66000}),
    [](const auto& row) { return std::string(row.param.name); });

// --- progress display ------------------------------------------------------------------------

TEST_F(SessionFixture, TheDialogOffersImagesInTheFolderOfTheDownloads) {
    Connect(ImageOf(30));
    Flash();
    const FileDialogRecord& dialog = headless.dialogs.shown.at(0);
    EXPECT_EQ(dialog.defaultExtension, ".run");
    EXPECT_EQ(dialog.initialFolder, "/home/tech/Documents\\Caldor Downloads\\");
    EXPECT_THAT(dialog.filter, HasSubstr(std::string("M40 firmware files (*.run)\0*.run\0All "
                                                     "Files (*.*)\0*.*\0",
                                                     51)));
}

TEST_F(SessionFixture, LinesAreNumberedFromZeroAndTheLastElevenCannotBeAborted) {
    Texts seen;
    std::string warningAt;
    headless.peers.onChange = [&](const Control& control, Property what) {
        if (what != Property::Caption || &control != &window->lblWarning) return;
        if (window->Session().Flags().mblnFlashing && warningAt.empty())
            seen.push_back(window->lblStatus.Caption() + ", " +
                           std::to_string(window->pbarStatus.Value()) + " %" +
                           (window->cmdFlashAbort.Enabled() ? ", abort" : ""));
        if (!control.Caption().empty()) warningAt = window->lblStatus.Caption();
    };
    Connect(ImageOf(30));
    Flash();
    ASSERT_EQ(seen.size(), 31u);
    EXPECT_EQ(seen[0], "Line 0 of 30, 0 %, abort");
    EXPECT_EQ(seen[19], "Line 19 of 30, 63 %, abort");  // 63.33, floored
    EXPECT_EQ(seen[20], "Line 20 of 30, 66 %");
    EXPECT_EQ(seen[30], "Line 30 of 30, 100 %");
    EXPECT_EQ(warningAt, "Line 30 of 30");
    EXPECT_TRUE(window->lblStatus.Caption().empty() && window->pbarStatus.Value() == 0);
}

// --- user actions ----------------------------------------------------------------------------

TEST_F(SessionFixture, ACancelANoOrAVanishedImageEndsItWithoutAWord) {
    window->cmdFlash.Press();
    headless.dialogs.choices = {"/home/tech/gone/m40.run"};
    window->cmdFlash.Press();
    EXPECT_THAT(headless.boxes.shown, IsEmpty());
    Connect(ImageOf(30));
    headless.boxes.answers = {BoxAnswer::No};
    Flash();
    EXPECT_THAT(Boxes(), IsEmpty());
    EXPECT_EQ(window->Session().Outcome(), Declined);
}

TEST_F(SessionFixture, AnAbortDuringTheHandshakeShowsTheCommandsOwnMessageTooAndACloseNone) {
    const auto atHandshake = [this](const std::function<void()>& action) {
        Connect(ImageOf(30), {"no-trav=silent"});
        WhenStatusIs("Initializing", [=, this] { headless.pump.StartTimer(500, action); });
        Flash();
        EXPECT_THAT(Boxes(), ElementsAre(kNoMonitor, kAborted));
    };
    atHandshake([this] { window->cmdFlashAbort.Press(); });
    const std::int32_t start = headless.clock.Ticks();
    atHandshake([this] { window->Unload(); });
    EXPECT_TRUE(window->Gone());
    EXPECT_FALSE(headless.ports.IsOpen("COM1"));
    EXPECT_LT(headless.clock.Ticks() - start, 600);
}

// --- the final stage -------------------------------------------------------------------------

TEST_F(SessionFixture, AFinalPhaseThatCannotBeArmedIsReportedAndEndsTheSession) {
    for (bool* const refuse : {&headless.peers.refuse, &headless.pump.refuse}) {
        Connect(ImageOf(30));
        WhenStatusIs("Line 30 of 30", [refuse] { *refuse = true; });
        const TimerId hung = headless.pump.StartTimer(120000, [&] {
            ADD_FAILURE() << "does not end";
            window->Session().Flags().mblnFlashing = false;
        });
        Flash();
        *refuse = false;
        headless.pump.StopTimer(hung);
        ExpectAtRest();
    }
    const std::string report = ReportBox("frmMain.FlashIndicator", "(7) Out of memory");
    EXPECT_THAT(Boxes(), ElementsAre(report, report));
}

TEST_F(SessionFixture, AVerdictThatWaitsAlreadyShowsWithoutTheWaitCursorAndStartsNoTimer) {
    Connect(ImageOf(30));
    WhenStatusIs("Updating Indicator", [&] { headless.clock.Sleep(2000); });
    auto pointer = MousePointer::Hourglass;
    headless.boxes.whileOpen = [&](const auto&) { pointer = headless.peers.pointer; };
    window->Session().FlashIndicator(kPath);
    EXPECT_THAT(Boxes(), ElementsAre(kDone));
    EXPECT_EQ(pointer, MousePointer::Default);
    EXPECT_FALSE(window->Session().AwaitsVerdict());
    EXPECT_EQ(window->Session().Outcome(), Done);
}

TEST_F(SessionFixture, AProcessStoppedAtAnyPointFindsTheVerdictBeforeItsTimeIsUp) {
    Connect(ImageOf(30));
    WhenStatusIs("Updating Indicator", [&] {
        const auto stop = std::make_shared<SourceId>();
        const TimerId timer = headless.pump.StartTimer(10, [&, stop] {
            // Polled after the port: the process stops between that poll and the timer check.
            if (*stop == 0)
                *stop = headless.pump.AddSource([&, stop] {
                    headless.pump.RemoveSource(*stop);
                    headless.clock.Sleep(70000);
                });
        });
        headless.pump.StartTimer(20, [&, timer] { headless.pump.StopTimer(timer); });
    });
    Flash();
    EXPECT_THAT(Boxes(), ElementsAre(kDone));
}

// --- images that are odd ---------------------------------------------------------------------

TEST_F(SessionFixture, AnImageOfOneLineReportsItsDivisionAndIsFlashedAllTheSame) {
    Connect(ImageOf(0));
    Flash();
    EXPECT_THAT(Boxes(),
                ElementsAre(ReportBox("frmMain.ScalePercentLong", "(11) Division by zero"), kDone));
}

TEST_F(SessionFixture, BlankLinesAreCountedAndNotSent) {
    const std::string image = "\r\n   \r\n" + ImageOf(20) + "\n";
    Connect(image);
    std::string last;
    headless.peers.onChange = [&](const Control& control, Property) {
        if (&control == &window->lblStatus && !control.Caption().empty()) last = control.Caption();
    };
    Flash();
    EXPECT_THAT(Boxes(), ElementsAre(kDone));
    EXPECT_EQ(last, "Line 22 of 23");
    EXPECT_TRUE(MemoryIs(image));
}

class NothingToAccept : public SessionFixture, public testing::WithParamInterface<std::string> {};

TEST_P(NothingToAccept, WaitsWithoutEndUntilTheWindowIsClosed) {
    Connect(GetParam(), {"done@0"});
    const std::int32_t start = headless.clock.Ticks();
    bool refused = false;
    headless.pump.StartTimer(300000, [&] {
        EXPECT_TRUE(headless.ports.IsOpen("COM1"));
        refused = !window->Unload();
    });
    Flash();
    EXPECT_TRUE(refused);
    EXPECT_GE(headless.clock.Ticks() - start, 300000);
    EXPECT_TRUE(window->Gone());
    EXPECT_FALSE(headless.ports.IsOpen("COM1"));
}

INSTANTIATE_TEST_SUITE_P(FlashSession, NothingToAccept,
                         testing::Values("   \r\n\r\n", "\n" + ImageOf(0)));

TEST_F(SessionFixture, AnImageThatVanishesDuringTheHandshakeIsReportedAndEndsTheSession) {
    Connect(ImageOf(30));
    WhenStatusIs("Initializing", [&] { headless.files.Delete(kPath); });
    Flash();
    EXPECT_THAT(Boxes(),
                ElementsAre(ReportBox("frmMain.FlashIndicator", "(9) Subscript out of range")));
}

// --- the line -------------------------------------------------------------------------------

TEST_F(SessionFixture, HalfAWordOfOneSessionNeverCompletesTheVerdictOfTheNext) {
    for (const char* half : {"DO", "NE"}) {
        Connect(ImageOf(30));
        farEnd->verdict = half;
        Flash();
    }
    EXPECT_THAT(Boxes(), ElementsAre(kFailure, kFailure));
    EXPECT_EQ(window->Session().Outcome(), NoVerdict);
}

TEST_F(SessionFixture, APauseOfTheMessageLoopDoesNotFailALineThatWasAnswered) {
    Connect(ImageOf(30), {"late=100@12"});
    WhenStatusIs("Line 12 of 30", [&] {
        // A menu held open: the pump returns 25 s later, with the reply waiting.
        const TimerId hold = headless.pump.StartTimer(1, [&] { headless.clock.Sleep(25000); });
        headless.pump.StartTimer(10, [&, hold] { headless.pump.StopTimer(hold); });
    });
    Flash();
    EXPECT_THAT(Boxes(), ElementsAre(kDone));
    const std::string sent = farEnd->received;
    EXPECT_EQ(sent.find(DataRecord(12)), sent.rfind(DataRecord(12))) << "sent twice";
}

}  // namespace
}  // namespace vantor
