// Windows, events, timers and the serial control without a screen.
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

#include "Wire.hpp"
#include "app/base/modSupport.hpp"
#include "controls/Controls.hpp"
#include "flash/SerialControl.hpp"
#include "support/LineSettings.hpp"
#include "support/Timer.hpp"
#include "tests/unit/Table.hpp"

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

TEST_F(ControlsTest, TheLastWindowEndsTheProgramAndNoOther) {
    const auto other = std::make_shared<Window>(mPlatform);
    mWindow->Load();
    other->Load();
    mPlatform.pump.StartTimer(5, [this] { mWindow->Unload(); });
    mPlatform.pump.StartTimer(50, [&other] { other->Unload(); });
    mPlatform.pump.Run();
    EXPECT_TRUE(other->Gone());
}

TEST_F(ControlsTest, EverySecondCallOfTheNicePumpPumpsAndItsErrorsAreIgnored) {
    for (int round = 1; round <= 3; ++round) {
        for (int i = 0; i < 10; ++i) DoEventsNice(mPlatform.pump);
        EXPECT_EQ(mPlatform.pump.pumps, 5u * static_cast<unsigned>(round));
        if (round == 2) mPlatform.pump.AddSource([] { throw RuntimeError(6); });
    }
}

TEST_F(ControlsTest, ValuesOutOfRangeAreRefused) {
    struct All : Form {
        using Form::Form;
        ProgressBar bar{*this, "bar"};
        ComboBox combo{*this, "combo"};
        StatusBar status{*this, "status", {"port"}};
        PictureBox picture{*this, "picture"};
    };
    static constexpr FormDesign kNone = {"frmAll", "", "", {}, {}};
    const auto form = std::make_shared<All>(mPlatform.manager, kNone);
    ComboBox& combo = form->combo;
    const auto refused = [](std::int32_t error, const std::function<void()>& call) {
        EXPECT_EQ(Raised(call).Number(), error);
    };
    for (const auto& row : {std::pair(-1, 380), {0, 0}, {100, 0}, {101, 380}})
        refused(row.second, [&] { form->bar.Value(static_cast<std::int16_t>(row.first)); });
    combo.Items({"a", "b"});
    for (const int index : {-2, 2}) refused(380, [&] { combo.ListIndex(index); });
    int clicks = 0;
    combo.Click.Connect([&clicks] { ++clicks; });
    for (const int index : {1, -1}) combo.Choose(index);
    EXPECT_EQ(Row(combo.Text(), clicks), "b 1") << "a system reports no selection with -1";
    combo.Items({"c"});
    EXPECT_EQ(combo.Text(), "") << "the selection stayed";
    refused(9, [&] { form->status.PanelText("none", ""); });
    form->picture.CurrentX = 5;
    form->picture.Print("a");
    EXPECT_EQ(form->picture.PrintedTexts().at(0).left, 5);
    EXPECT_EQ(form->picture.CurrentX, 0);
    form->picture.Cls();
    EXPECT_TRUE(form->picture.PrintedTexts().empty());
}

// --- the serial control ------------------------------------------------------------------------

struct Line {
    Line() {
        platform.ports.Plug("COM3", wire);
        comm.name = "COM3";
        comm.settings = "9600,E,7,1";
        port.name = "3";
        port.settings = "250000,E,7,1";
        comm.Receive.Connect([this] { out += "<" + comm.Input() + "> "; });
    }
    ~Line() { comm.Close(); }

    ReportingPlatform platform;
    Wire wire;
    SerialControl comm{platform.ports, {}};
    BufferedPort port{platform.ports};  // for what the control does not have
    std::string out;
};
using Argument = const std::string&;

const Verbs<Line> kVerbs = {
    {"port", [](Line& l, Argument name) { l.comm.name = name; }},
    {"settings", [](Line& l, Argument settings) { l.comm.settings = settings; }},
    {"open",
     [](Line& l, Argument) {
         l.comm.Open();
         l.out += l.comm.IsOpen() ? FormatLineSettings(l.wire.line) + " " : "not ";
     }},
    {"close", [](Line& l, Argument) { l.comm.Close(); }},
    {"is-open",  // the control, the port "COM3"
     [](Line& l, Argument) {
         l.out += Row(l.comm.IsOpen(), l.platform.ports.IsOpen("COM3")) + " ";
     }},
    {"held", [](Line& l, Argument port) { l.platform.ports.Hold(port, true); }},
    {"lost", [](Line& l, Argument) { l.wire.gone = true; }},
    {"driver-takes", [](Line& l, Argument n) { l.platform.ports.LimitWrites(std::stoul(n)); }},
    {"output", [](Line& l, Argument text) { l.comm.Output(text); }},
    {"counts",
     [](Line& l, Argument) {
         l.out += Row(l.comm.InBufferCount(), "");
         l.out += Row(l.comm.OutBufferCount(), "");
     }},
    {"received", [](Line& l, Argument) { l.out += std::exchange(l.wire.received, {}) + "| "; }},
    {"arrives", [](Line& l, Argument text) { l.wire.sent = text; }},
    {"arrive", [](Line& l, Argument n) { l.wire.sent = std::string(std::stoul(n), 'x'); }},
    {"input-size", [](Line& l, Argument) { l.out += Row(l.comm.Input().size(), ""); }},
    {"pump", [](Line& l, Argument) { l.platform.pump.PumpPending(); }},
    {"threshold", [](Line& l, Argument n) { l.comm.ReceiveThreshold(std::stoul(n)); }},
    {"input", [](Line& l, Argument) { l.out += l.comm.Input() + "| "; }},
    {"clear", [](Line& l, Argument) { l.comm.ClearInput(); }},
    {"why",  // the open failed
     [](Line& l, Argument) {
         const auto& error = l.comm.OpenError();
         l.out += error ? Row(static_cast<int>(error->Why()), error->Device(), "") : "no error ";
     }},
    // The port alone.
    {"port-open",  // with flow control 0, 1 or 2
     [](Line& l, Argument flow) {
         l.port.flowControl = static_cast<FlowControl>(std::stoi(flow));
         l.port.Open({});
         const LineSettings& line = l.wire.line;
         l.out += Row(FormatLineSettings(line), static_cast<int>(line.flowControl), "");
     }},
    {"port-close", [](Line& l, Argument) { l.port.Close(); }},
    {"port-is-open", [](Line& l, Argument) { l.out += Row(l.port.IsOpen(), ""); }},
    {"port-output", [](Line& l, Argument text) { l.port.Output(text); }},
    {"pending", [](Line& l, Argument) { l.out += Row(l.port.OutBufferCount(), ""); }},
    {"flush", [](Line& l, Argument) { l.out += Row(l.port.FlushPending(), ""); }},
    {"drop-lines", [](Line& l, Argument) { l.port.DropPendingLines(); }},
    {"drop", [](Line& l, Argument) { l.port.DropPending(); }},
    {"dtr", [](Line& l, Argument on) { l.port.Dtr(on == "on"); }},
    {"rts", [](Line& l, Argument on) { l.port.Rts(on == "on"); }},
    {"break", [](Line& l, Argument on) { l.port.Break(on == "on"); }},
    {"signals", [](Line& l, Argument) { l.out += std::exchange(l.wire.signals, {}) + "| "; }},
    {"modem",  // of the device: "cts" and "ri" are asserted
     [](Line& l, Argument lines) {
         l.wire.modem = ModemLines{.cts = lines.starts_with("cts"), .ri = lines.ends_with("ri")};
     }},
    {"lines",
     [](Line& l, Argument) {
         const auto lines = l.port.Lines();
         l.out += lines ? Row(lines->cts, lines->dsr, lines->dcd, lines->ri, "") : "none ";
     }},
    {"noise",
     [](Line& l, Argument) {
         l.wire.errors = {1, 2, 3};
     }},
    {"errors",
     [](Line& l, Argument) {
         const LineErrors errors = l.port.Errors();
         l.out += Row(errors.framing, errors.parity, errors.overrun, "");
     }},
};

TEST(SerialControl, DoesWhatTheTableSays) {
    ExpectTable("serial", [](const Words& steps) { return Perform(Line(), kVerbs, steps); });
}

}  // namespace
}  // namespace vantor
