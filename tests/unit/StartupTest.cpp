// From Main to the close of the last window, and the small procedures used at start-up.
#include "app/modStartup.hpp"

#include <gtest/gtest.h>

#include <variant>

#include "app/base/modSupport.hpp"
#include "app/frmMain.hpp"
#include "dialogs/frmStatus.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

class StartupTest : public testing::Test {
protected:
    HeadlessPlatform mPlatform;
    modStartup mStartup{mPlatform.platform};
};

const std::string kUpdates = "/home/tech/Documents/updates.txt";

TEST_F(StartupTest, MainPreparesTheReporterAndShowsTheStartPanel) {
    ASSERT_TRUE(mStartup.Main());
    EXPECT_EQ(mStartup.Errors().Title, "Tessmar Vantor Update");
    EXPECT_EQ(std::get<std::string>(mStartup.Errors().Destination()),
              "/home/tech/.config\\TSMR\\CALDOR\\errorlog.txt");
    frmMain& window = *mStartup.MainWindow();
    EXPECT_TRUE(window.Visible() && window.picStartup.Visible());
    EXPECT_FALSE(window.picUpdate.Visible() || window.picFlash.Visible());

    Trapped("a.b", [] { throw RuntimeError(6); });
    EXPECT_EQ(Told(mPlatform), Texts{ReportBox("a.b", "(6) Overflow")})
        << "errors, and nothing else, are to be shown from now on";
    const std::string report =
        mPlatform.files.ReadAll("/home/tech/.config/TSMR/CALDOR/errorlog.txt");
    EXPECT_NE(report.find("\r\n00a.b\r\n"), std::string::npos) << "Main left its name behind";
}

TEST_F(StartupTest, AnUnknownProgramFolderIsToldAndDoesNotStopTheStart) {
    mPlatform.process.executable.clear();
    EXPECT_TRUE(mStartup.Main());
    ASSERT_EQ(Told(mPlatform).size(), 1u);
    EXPECT_TRUE(Told(mPlatform)[0].starts_with("none|"));
    EXPECT_TRUE(
        Told(mPlatform)[0].ends_with("|An error has occured in Pellin.modSupport.AppPath \r\n"
                                     "Error:53\r\nDescription:File not found\r\nLine:0"));
    EXPECT_TRUE(mStartup.MainWindow()->Visible());
}

TEST_F(StartupTest, AFolderThatTheSystemCannotNameIsNeverTheRootOfTheDrive) {
    mPlatform.folders.home.clear();
    ASSERT_TRUE(mStartup.Main());
    EXPECT_EQ(std::get<std::string>(mStartup.Errors().Destination()), "C:\\ERRORS.TXT");
    EXPECT_FALSE(mPlatform.files.Exists("/TSMR/CALDOR/cache"));
    frmMain& window = *mStartup.MainWindow();
    window.cmdFlash.Press();
    ASSERT_EQ(mPlatform.dialogs.shown.size(), 1u);
    EXPECT_EQ(mPlatform.dialogs.shown[0].initialFolder, "");
    window.Unload();
    EXPECT_EQ(Told(mPlatform), Texts{});
}

TEST_F(StartupTest, BoxesOfTheErrorHandlerAndTheClassesBelongToTheWindowInUse) {
    ASSERT_TRUE(mStartup.Main());
    frmMain& window = *mStartup.MainWindow();
    const auto boxes = [] {
        Trapped("a.b", [] { throw RuntimeError(6); });
        Boxed("c", [] { throw RuntimeError(6); });
        BoxedSetup("d", [] { throw RuntimeError(6); });
    };
    boxes();
    const auto status = std::make_shared<frmStatus>(window.Manager(), mPlatform.strings);
    status->Show();
    const NativeWindow inFront = status->WindowHandle();
    boxes();
    status->Unload();
    boxes();
    std::vector<NativeWindow> owners;
    for (const MessageBoxRequest& box : mPlatform.boxes.shown) owners.push_back(box.owner);
    const NativeWindow main = window.WindowHandle();
    EXPECT_NE(main, 0u);
    EXPECT_EQ(owners, (std::vector<NativeWindow>{main, main, main, inFront, inFront, inFront, main,
                                                 main, main}));
}

TEST_F(StartupTest, ClosingTheMainWindowEndsTheProgramAndCleansUp) {
    mPlatform.files.Add(kUpdates, "x");
    mStartup.Main();
    const auto other =
        std::make_shared<frmStatus>(mStartup.MainWindow()->Manager(), mPlatform.strings);
    other->Load();
    mPlatform.pump.StartTimer(5, [this] { mStartup.MainWindow()->mnuFileExit.Press(); });
    mPlatform.pump.StartTimer(10000, [this] { mPlatform.pump.Quit(); });
    mPlatform.pump.Run();
    EXPECT_LT(mPlatform.clock.Milliseconds(), 10000u) << "it had to be stopped from here";
    EXPECT_TRUE(other->Gone());
    EXPECT_EQ(mPlatform.peers.open, Texts{});
    EXPECT_FALSE(mPlatform.files.Exists(kUpdates));
    EXPECT_EQ(Told(mPlatform), Texts{});
}

TEST(modSupport, EveryPathGetsExactlyOneFinalBackslash) {
    EXPECT_EQ(AddFinalSlash("") + AddFinalSlash("C:\\") + AddFinalSlash("/home/x/"),
              "\\C:\\/home/x/\\");
    HeadlessProcess process;
    process.executable = "C:\\Program Files\\Vantor\\tsupdate.exe";
    EXPECT_EQ(AppPath(process), "C:\\Program Files\\Vantor\\");
}

TEST(modSupport, EverySecondCallOfTheNicePumpPumps) {
    HeadlessPlatform platform;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 10; ++i) DoEventsNice(platform.pump);
        EXPECT_EQ(platform.pump.pumps, 5u * static_cast<unsigned>(round + 1));
        if (round == 1) platform.pump.AddSource([] { throw RuntimeError(6); });
    }
}

}  // namespace
}  // namespace vantor
