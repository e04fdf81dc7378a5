// Windows, events, timers and the serial control without a screen.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "ReportingPlatform.hpp"
#include "app/frmMain.hpp"
#include "dialogs/frmStatus.hpp"

namespace vantor {
namespace {

constexpr std::array kRows = {
    ControlDesign{ControlKind::CommandButton, "cmdGo", -1, "", {}, "Go", ""},
    ControlDesign{ControlKind::Timer, "tmr", -1, "", {}, "", ""},
    ControlDesign{ControlKind::SerialControl, "comm", -1, "", {}, "", ""}};
const FormDesign kDesign = {"frmTest", "", "", {}, kRows};
const FormDesign kRowMissing = {"frmTest", "", "", {}, std::span(kRows).first(2)};

class Window : public Form {
public:
    Window(Desktop& desktop, HeadlessPlatform& platform, const FormDesign& design = kDesign)
        : Form(desktop, design),
          tmr(*this, "tmr", platform.pump, 10),
          comm(*this, "comm", platform.ports) {}

    CommandButton cmdGo{*this, "cmdGo"};
    Timer tmr;
    SerialControl comm;
};

class Wire : public FarEnd {
public:
    void Opened(const LineSettings& settings) override {
        line = settings;
        ++opened;
    }
    void Closed() override {}
    void Receive(std::string_view bytes) override { received += bytes; }
    std::string Transmit() override { return std::exchange(sent, {}); }
    bool HungUp() const override { return gone; }

    LineSettings line;
    int opened = 0;
    std::string received;
    std::string sent;
    bool gone = false;
};

class ControlsTest : public testing::Test {
protected:
    ReportingPlatform mPlatform;
    Desktop mDesktop{mPlatform.peers, mPlatform.pump};
    std::shared_ptr<Window> mWindow = std::make_shared<Window>(mDesktop, mPlatform);
};

TEST_F(ControlsTest, TheDesignsOfTheProgramFitTheirClasses) {
    EXPECT_NO_THROW(std::make_shared<frmMain>(mDesktop, mPlatform.platform)->Load());
    EXPECT_NO_THROW(std::make_shared<frmStatus>(mDesktop, mPlatform.strings)->Load());
    EXPECT_EQ(mPlatform.peers.open, (std::vector<std::string>{"frmMain", "frmStatus"}));
    EXPECT_EQ(Raised([this] {
                  std::make_shared<Window>(mDesktop, mPlatform, kRowMissing)->Load();
              }).Number(),
              51)
        << "a control without a design row";
    EXPECT_EQ(Raised([this] { std::make_shared<Form>(mDesktop, kDesign)->Load(); }).Number(), 51)
        << "a design row without a control";
}

TEST_F(ControlsTest, AWindowUnloadedByItsOwnHandlerLivesUntilTheHandlerReturns) {
    const std::weak_ptr<Window> watched = mWindow;
    CommandButton& button = mWindow->cmdGo;
    mWindow->Load();
    bool lived = false;
    button.Click.Handle([this, &lived, watched] {
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
    mWindow->cmdGo.Click.Handle([&] {
        ++clicks;
        mWindow->cmdGo.Press();
    });
    mWindow->cmdGo.Press();
    EXPECT_EQ(clicks, 1);
    mWindow->cmdGo.Press();
    EXPECT_EQ(clicks, 2) << "the event stayed closed behind its handler";
    mWindow->cmdGo.Click.Handle([&clicks] {
        ++clicks;
        throw std::runtime_error("fails");
    });
    EXPECT_THROW(mWindow->cmdGo.Press(), std::runtime_error);
    EXPECT_THROW(mWindow->cmdGo.Press(), std::runtime_error) << "closed behind a failed handler";
    mWindow->cmdGo.Enabled(false);
    mWindow->cmdGo.Press();
    EXPECT_EQ(clicks, 4) << "a disabled button was pressed";
}

TEST_F(ControlsTest, ATimerTicksAtItsIntervalOnlyWhileEnabled) {
    int ticks = 0;
    mWindow->tmr.Tick.Handle([&ticks] { ++ticks; });
    const auto pump = [this](int times) {
        for (int i = 0; i < times; ++i) mPlatform.pump.PumpPending();
    };
    pump(30);
    EXPECT_EQ(ticks, 0) << "it is made disabled";
    mWindow->tmr.Enabled(true);
    pump(9);
    mWindow->tmr.Enabled(true);
    pump(1);
    EXPECT_EQ(ticks, 1) << "enabling it again must not start the interval anew";
    pump(20);
    EXPECT_EQ(ticks, 3);
    mPlatform.clock.Sleep(10);
    mWindow->tmr.Enabled(false);
    pump(30);
    EXPECT_EQ(ticks, 3) << "a tick that was due when it was disabled";
    mWindow->tmr.Enabled(true);
    mWindow.reset();
    pump(20);
    EXPECT_EQ(ticks, 3) << "a tick for a window that is no more";
}

TEST_F(ControlsTest, TheStatusWindowShowsOkOnlyWhenTall) {
    const auto status = std::make_shared<frmStatus>(mDesktop, mPlatform.strings);
    status->Load();
    const auto expect = [&status](float height, bool ok) {
        EXPECT_EQ(status->Place().height, height);
        EXPECT_EQ(status->cmdOK.Visible(), ok);
    };
    expect(1100, false);
    status->DisplayOK(true);
    expect(1800, true);
    status->DisplayOK(false);
    expect(1100, false);
    EXPECT_EQ(status->cmdOK.Caption(), "&OK");

    std::string drawn;
    mPlatform.peers.onChange = [&drawn](const Control& control, Property property) {
        if (property == Property::Repaint) drawn = control.Caption();
    };
    status->Message("Writing flash");
    EXPECT_EQ(drawn, "Writing flash") << "the label is to be drawn at once";
    status->cmdOK.Press();
    EXPECT_TRUE(status->Gone());
}

TEST(ParseLineSettings, NoBrokenTextMayOpenALine) {
    EXPECT_EQ(ParseLineSettings("38400,N,8,2"), (LineSettings{38400, Parity::None, 8, 2}));
    EXPECT_EQ(ParseLineSettings("115200,e,7,1"), (LineSettings{115200, Parity::Even, 7, 1}));
    EXPECT_EQ(ParseLineSettings("300,O,8,1").parity, Parity::Odd);
    // clang-format off
    for (const char* bad : {
             "", "38400", "38400,N,8", "38400,N,8,2,", "38400,N,8,2,1", ",N,8,2", "38400,,8,2",
             "38400,N,,2", "38400,N,8,", "38400,M,8,2", "38400,NN,8,2", "38400,N,6,2",
             "38400,N,8,3", "38400,N,8,1.5", "38400, N,8,2", " 38400,N,8,2", "-1,N,8,2",
             "38400x,N,8,2", "99999999999,N,8,2", "38400;N;8;2"})
        // clang-format on
        EXPECT_EQ(Raised([bad] { ParseLineSettings(bad); }).Number(), 380) << bad;
}

class SerialControlTest : public ControlsTest {
protected:
    SerialControlTest() {
        mPlatform.ports.Plug("COM3", mWire);
        mComm.Port("COM3");
        mComm.Settings("9600,E,7,1");
    }
    ~SerialControlTest() override { mComm.ClosePort(); }

    Wire mWire;
    SerialControl& mComm = mWindow->comm;
};

TEST_F(SerialControlTest, AnOpenThatFailsLeavesThePortClosedAndSaysNothing) {
    const auto opens = [this](const std::string& port, const std::string& settings) {
        mComm.Port(port);
        mComm.Settings(settings);
        mComm.OpenPort();
        return mComm.PortOpen();
    };
    EXPECT_TRUE(opens("3", "9600,E,7,1")) << "a bare number names a COM port";
    EXPECT_EQ(mWire.line, (LineSettings{9600, Parity::Even, 7, 1}));
    EXPECT_TRUE(opens("COM3", "115200,N,8,2")) << "opening again at another speed";
    EXPECT_EQ(mWire.line.bitsPerSecond, 115200u);
    EXPECT_FALSE(opens("COM9", "9600,E,7,1"));
    EXPECT_FALSE(mPlatform.ports.IsOpen("COM3")) << "the old port stayed open";
    EXPECT_FALSE(opens("COM3", "9600,E,7"));
    mPlatform.ports.Hold("COM3", true);
    EXPECT_FALSE(opens("COM3", "9600,E,7,1"));
    mComm.Output("lost");
    EXPECT_EQ(mComm.OutBufferCount() + mComm.InBufferCount(), 0u);
    EXPECT_TRUE(mPlatform.boxes.shown.empty());
}

TEST_F(SerialControlTest, BytesThatTheDriverDoesNotTakeAtOnceKeepTheirOrder) {
    mComm.OpenPort();
    mPlatform.ports.LimitWrites(4);
    mComm.Output("0123456");
    mComm.Output("89");
    EXPECT_EQ(mWire.received, "01234568") << "the second write must queue behind the first";
    mPlatform.ports.LimitWrites(0);
    EXPECT_EQ(mComm.OutBufferCount(), 1u);
    mPlatform.ports.LimitWrites(4);
    EXPECT_EQ(mComm.InBufferCount(), 0u);
    EXPECT_EQ(mWire.received, "012345689");
    EXPECT_EQ(mComm.OutBufferCount(), 0u);

    mPlatform.ports.LimitWrites(0);
    mComm.Output("stale");
    mComm.ClosePort();
    mPlatform.ports.LimitWrites(100);
    mComm.OpenPort();
    mComm.Output("new");
    EXPECT_EQ(mWire.received, "012345689new") << "a rest of the session before";
}

TEST_F(SerialControlTest, ALostDeviceClosesTheControlAndLaterSendsDoNothing) {
    mComm.OpenPort();
    mComm.ReceiveThreshold(1);
    mWire.gone = true;
    mPlatform.pump.PumpPending();
    EXPECT_FALSE(mComm.PortOpen()) << "not noticed while listening";
    mWire.gone = false;
    mComm.OpenPort();
    EXPECT_TRUE(mComm.PortOpen());
    mPlatform.ports.Unplug("COM3");
    mComm.Output("x");
    EXPECT_FALSE(mComm.PortOpen());
    mComm.Output("y");
    mComm.ClearInput();
    EXPECT_EQ(mComm.Input(), "");
    EXPECT_EQ(mWire.received, "");
    EXPECT_TRUE(mPlatform.boxes.shown.empty());
}

TEST_F(SerialControlTest, TheThresholdIsCheckedAtOnceAndAtEachPump) {
    mComm.OpenPort();
    std::vector<std::string> heard;
    mComm.Receive.Handle([&] { heard.push_back(mComm.Input()); });
    mWire.sent = "DONE";
    mPlatform.pump.PumpPending();
    EXPECT_TRUE(heard.empty()) << "no events at threshold 0";
    mComm.ReceiveThreshold(5);
    EXPECT_TRUE(heard.empty());
    mComm.ReceiveThreshold(4);
    EXPECT_EQ(heard, (std::vector<std::string>{"DONE"})) << "characters that waited already";
    mWire.sent = "abc";
    mPlatform.pump.PumpPending();
    EXPECT_EQ(heard.size(), 1u) << "raised below the threshold";
    mWire.sent = "d";
    mPlatform.pump.PumpPending();
    EXPECT_EQ(heard.back(), "abcd");
    mComm.ReceiveThreshold(0);
    mWire.sent = "late";
    mPlatform.pump.PumpPending();
    EXPECT_EQ(heard.size(), 2u);
    mComm.ClearInput();
    EXPECT_EQ(mComm.Input(), "");
}

TEST_F(SerialControlTest, BytesThatArriveDuringTheHandlerWaitForTheNextPump) {
    mComm.OpenPort();
    std::vector<std::string> heard;
    mComm.Receive.Handle([&] {
        heard.push_back(mComm.Input());
        mWire.sent = heard.size() == 1 ? "second" : "";
        mPlatform.pump.PumpPending();
        EXPECT_LE(heard.size(), 2u);
        heard.back() += ".";
    });
    mComm.ReceiveThreshold(1);
    mWire.sent = "first";
    mPlatform.pump.PumpPending();
    EXPECT_EQ(heard, (std::vector<std::string>{"first."}));
    mPlatform.pump.PumpPending();
    EXPECT_EQ(heard, (std::vector<std::string>{"first.", "second."}));
}

}  // namespace
}  // namespace vantor
