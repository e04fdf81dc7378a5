// Windows, events, timers and the serial control without a screen.
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

#include "Wire.hpp"
#include "controls/Controls.hpp"
#include "flash/SerialControl.hpp"
#include "support/LineSettings.hpp"
#include "support/Timer.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

constexpr std::array kRows = {
    ControlDesign{ControlKind::CommandButton, "cmdGo", -1, "", {}, "Go", ""},
    ControlDesign{ControlKind::CommandButton, "cmdStop", -1, "", {}, "Stop", ""}};
const FormDesign kDesign = {"frmTest", "", "", {}, kRows};
const FormDesign kRowMissing = {"frmTest", "", "", {}, std::span(kRows).first(1)};

class Window : public Form {
public:
    explicit Window(ReportingPlatform& platform, const FormDesign& design = kDesign)
        : Form(platform.manager, design) {}

    CommandButton cmdGo{*this, "cmdGo"};
    CommandButton cmdStop{*this, "cmdStop"};
};

class ControlsTest : public testing::Test {
protected:
    ReportingPlatform mPlatform;
    std::shared_ptr<Window> mWindow = std::make_shared<Window>(mPlatform);
};

TEST_F(ControlsTest, ADesignAndAClassThatDoNotFitAreAnInternalError) {
    const auto rowMissing = std::make_shared<Window>(mPlatform, kRowMissing);
    const auto controlMissing = std::make_shared<Form>(mPlatform.manager, kDesign);
    EXPECT_EQ(Raised([&] { rowMissing->Load(); }).Number(), 51);
    EXPECT_EQ(Raised([&] { controlMissing->Load(); }).Number(), 51);
}

TEST_F(ControlsTest, AWindowThatFailsToLoadLeavesNothingOpen) {
    struct Failing : Form {
        using Form::Form;
        void Form_Load() override { throw RuntimeError(ErrorNumber::DiskFull); }
    };
    static constexpr FormDesign kEmpty = {"frmFailing", "", "", {}, {}};
    for (const bool refused : {false, true}) {
        mPlatform.peers.refuse = refused;
        const auto window = std::make_shared<Failing>(mPlatform.manager, kEmpty);
        EXPECT_EQ(Raised([&] { window->Load(); }).Number(), refused ? 7 : 61);
        EXPECT_TRUE(window->Gone());
        EXPECT_TRUE(mPlatform.manager.OpenForms().empty() && mPlatform.peers.open.empty());
    }
}

TEST_F(ControlsTest, AWindowUnloadedByItsOwnHandlerLivesUntilTheHandlerReturns) {
    const std::weak_ptr<Window> watched = mWindow;
    CommandButton& button = mWindow->cmdGo;
    mWindow->Load();
    bool lived = false;
    button.Click.Connect([this, &lived, watched] {
        mWindow->Unload();
        mWindow.reset();
        lived = !watched.expired() && watched.lock()->Gone();
    });
    button.Press();
    EXPECT_TRUE(lived);
    EXPECT_TRUE(watched.expired() && mPlatform.peers.open.empty());
}

TEST_F(ControlsTest, AnEventIsNotRaisedWithinItsOwnHandler) {
    int clicks = 0;
    CommandButton& button = mWindow->cmdGo;
    button.Click.Connect([&] {
        ++clicks;
        button.Press();
        throw std::runtime_error("fails");
    });
    for (int press = 1; press <= 2; ++press) {
        EXPECT_THROW(button.Press(), std::runtime_error) << "closed behind a failed handler";
        EXPECT_EQ(clicks, press);
    }
    button.Click.Connect([&clicks] { ++clicks; });
    button.Press();
    button.Press();
    EXPECT_EQ(clicks, 4) << "the event stayed closed behind its handler";
    button.Enabled(false);
    button.Press();
    EXPECT_EQ(clicks, 4) << "a disabled button was pressed";
}

TEST_F(ControlsTest, ATimerTicksAtItsIntervalOnlyWhileEnabled) {
    int ticks = 0;
    std::optional<Timer> timer(std::in_place, mPlatform.pump, 10, [&ticks] { ++ticks; });
    const auto ticksAfter = [this, &ticks](int pumps) {
        for (int i = 0; i < pumps; ++i) mPlatform.pump.PumpPending();
        return ticks;
    };
    EXPECT_EQ(ticksAfter(30), 0) << "it is made disabled";
    timer->Enabled(true);
    EXPECT_EQ(ticksAfter(9), 0);
    timer->Enabled(true);
    EXPECT_EQ(ticksAfter(1), 1) << "enabling it again must not start the interval anew";
    EXPECT_EQ(ticksAfter(20), 3);
    mPlatform.clock.Sleep(10);
    timer->Enabled(false);
    EXPECT_EQ(ticksAfter(30), 3) << "a tick that was due when it was disabled";
    timer->Enabled(true);
    timer.reset();
    EXPECT_EQ(ticksAfter(20), 3) << "a tick of a timer that is no more";
}

TEST(ParseLineSettings, NoBrokenTextMayOpenALine) {
    EXPECT_EQ(ParseLineSettings("38400,N,8,2"), (LineSettings{38400, Parity::None, 8, 2}));
    EXPECT_EQ(ParseLineSettings("115200,e,7,1"), (LineSettings{115200, Parity::Even, 7, 1}));
    EXPECT_EQ(ParseLineSettings("300,O,8,1").parity, Parity::Odd);
    EXPECT_EQ(FormatLineSettings({115200, Parity::Even, 7, 1}), "115200,E,7,1");
    for (const std::string bad :
         {"", "38400,N,8", "38400,N,8,2,1", "38400,,8,2", "38400,M,8,2", "38400,NN,8,2",
          "38400,N,6,2", "38400,N,8,3", "38400,N,8,1.5", " 38400,N,8,2", "-1,N,8,2", "38400x,N,8,2",
          "99999999999,N,8,2", "38400;N;8;2"})
        EXPECT_EQ(Raised([&] { ParseLineSettings(bad); }).Number(), 380) << bad;
}

class SerialControlTest : public ControlsTest {
protected:
    SerialControlTest() {
        mPlatform.ports.Plug("COM3", mWire);
        mComm.name = "COM3";
        mComm.settings = "9600,E,7,1";
    }
    ~SerialControlTest() override { mComm.Close(); }

    Wire mWire;
    SerialControl mComm{mPlatform.ports, {}};
};

TEST_F(SerialControlTest, AnOpenThatFailsLeavesThePortClosedAndSaysNothing) {
    const auto opens = [this](const std::string& port, const std::string& settings) {
        mComm.name = port;
        mComm.settings = settings;
        mComm.Open();
        return mComm.IsOpen();
    };
    EXPECT_TRUE(opens("3", "9600,E,7,1")) << "a bare number names a COM port";
    EXPECT_EQ(mWire.line, (LineSettings{9600, Parity::Even, 7, 1}));
    EXPECT_TRUE(opens("COM3", "115200,N,8,2")) << "opening again at another speed";
    EXPECT_EQ(mWire.line.bitsPerSecond, 115200u);
    EXPECT_FALSE(opens("COM9", "9600,E,7,1"));
    EXPECT_FALSE(mPlatform.ports.IsOpen("COM3")) << "the old port stayed open";
    EXPECT_FALSE(opens("COM3", "9600,E,7"));
    EXPECT_TRUE(opens("COM3", "9600,E,7,1"));
    mComm.ReceiveThreshold(1);
    mWire.gone = true;
    mPlatform.pump.PumpPending();
    EXPECT_FALSE(mComm.IsOpen()) << "a lost device is not noticed while listening";
    mPlatform.ports.Hold("COM3", true);
    EXPECT_FALSE(opens("COM3", "9600,E,7,1"));
    mComm.Output("lost");
    EXPECT_EQ(mComm.OutBufferCount() + mComm.InBufferCount(), 0u);
    EXPECT_EQ(Told(mPlatform), Texts{});
}

TEST_F(SerialControlTest, BytesThatTheDriverDoesNotTakeAtOnceKeepTheirOrder) {
    mComm.Open();
    mPlatform.ports.LimitWrites(4);
    mComm.Output("0123456");
    mComm.Output("89");
    EXPECT_EQ(mWire.received, "01234568") << "the second write must queue behind the first";
    EXPECT_EQ(mComm.InBufferCount(), 0u);
    EXPECT_EQ(mWire.received, "012345689");
    EXPECT_EQ(mComm.OutBufferCount(), 0u);

    mPlatform.ports.LimitWrites(0);
    mComm.Output("stale");
    EXPECT_EQ(mComm.OutBufferCount(), 5u);
    mComm.Close();
    mPlatform.ports.LimitWrites(100);
    mComm.Open();
    mComm.Output("new");
    EXPECT_EQ(mWire.received, "012345689new") << "a rest of the session before";
}

TEST_F(SerialControlTest, TheThresholdIsCheckedAtOnceAndAtEachPump) {
    mComm.Open();
    Texts heard;
    mComm.Receive.Connect([&] { heard.push_back(mComm.Input()); });
    const auto pump = [this](const char* sent) {
        mWire.sent = sent;
        mPlatform.pump.PumpPending();
    };
    pump("DONE");
    mComm.ReceiveThreshold(5);
    EXPECT_EQ(heard, Texts{}) << "an event at threshold 0, or below the threshold";
    mComm.ReceiveThreshold(4);
    EXPECT_EQ(heard, Texts{"DONE"}) << "characters that waited already";
    pump("abc");
    EXPECT_EQ(heard, Texts{"DONE"}) << "raised below the threshold";
    pump("d");
    EXPECT_EQ(heard, (Texts{"DONE", "abcd"}));
    mComm.ReceiveThreshold(0);
    pump("late");
    EXPECT_EQ(heard.size(), 2u);
    mComm.ClearInput();
    EXPECT_EQ(mComm.Input(), "");
}

}  // namespace
}  // namespace vantor
