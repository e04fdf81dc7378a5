// The terminal control against a far end: port, keyboard, capture, commands, view.
#include "terminal/TerminalControl.hpp"

#include <gtest/gtest.h>

#include "Wire.hpp"
#include "controls/Form.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

constexpr std::array kRows = {ControlDesign{ControlKind::Terminal, "com", -1, "", {}, "", ""}};
const FormDesign kDesign = {"frmTest", "", "", {}, kRows};

class Window : public Form {
public:
    explicit Window(ReportingPlatform& platform)
        : Form(platform.manager, kDesign), com(*this, "com", platform.platform) {}
    TerminalControl com;
};

class TerminalControlTest : public testing::Test {
protected:
    TerminalControlTest() {
        mPlatform.ports.Plug("COM3", mWire);
        mPlatform.files.CreateFolders("/tmp");
        mWindow->Load();
        mCom.Port().name = "3";
        mCom.Port().settings = "9600,E,7,1";
        mCom.PerformCommand(TerminalCommand::Open);
    }

    void Arrive(const std::string& bytes) {
        mWire.sent = bytes;
        mPlatform.pump.PumpPending();
    }
    std::string AllText() {
        mCom.SelectAll();
        return mCom.SelectedText();
    }

    Wire mWire;  // outlives the window, which the desktop keeps alive
    ReportingPlatform mPlatform;
    std::shared_ptr<Window> mWindow = std::make_shared<Window>(mPlatform);
    TerminalControl& mCom = mWindow->com;
};

const std::string kPath = "/tmp/capture.txt";

TEST_F(TerminalControlTest, SendsKeysAsTypedAndLinesWithOneCr) {
    mCom.Key("ab\r\x03\n");
    EXPECT_EQ(mWire.received, "ab\r\x03\n");
    mCom.Output("  cmd\n2 ");
    EXPECT_EQ(mWire.received, "ab\r\x03\n  cmd\n2 \r");
    EXPECT_EQ(AllText(), "") << "the far end echoes, not the terminal";
    mCom.EndLines = false;
    mCom.LocalEcho = true;
    mCom.Output("raw");
    mCom.Key("\rñ");
    EXPECT_EQ(AllText(), "raw\r\nÃ±") << "keys are bytes of the code page";
    mPlatform.clipboard.Text("ñ1\r\n2\n3\r");
    mWire.received.clear();
    mCom.Paste();
    EXPECT_EQ(mWire.received,
              "\xF1"
              "1\r2\r3\r");
}

TEST_F(TerminalControlTest, CapturesWhatIsReceivedByteForByte) {
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    Arrive("before");
    mPlatform.files.Add(kPath, "an older text");
    mCom.CaptureFile(kPath);
    mCom.LocalEcho = true;
    mCom.Key("typed");
    Arrive(all);
    EXPECT_EQ(mPlatform.files.ReadAll(kPath), all) << "written as it arrives";
    const std::string more(200'000, 'x');
    Arrive(more);
    for (int i = 0; i < 3; ++i) mPlatform.pump.PumpPending();
    mCom.CaptureFile("/tmp/second.txt");
    EXPECT_EQ(Raised([&] { mCom.CaptureFile("/no folder/x.txt"); }).Number(), 76);
    Arrive("second");
    mWire.sent = " and last";
    mCom.PerformCommand(TerminalCommand::Close);
    mCom.CaptureFile("");
    mCom.CaptureFile("");
    Arrive("after");
    EXPECT_EQ(mPlatform.files.ReadAll(kPath), all + more);
    EXPECT_EQ(mPlatform.files.ReadAll("/tmp/second.txt"), "second and last");
    EXPECT_EQ(mCom.CaptureFile(), "");
}

TEST_F(TerminalControlTest, ACaptureThatFailsEndsIsReportedOnceAndLosesNothingShown) {
    mCom.CaptureFile(kPath);
    Arrive("1");
    mPlatform.files.FailOn(kPath, 61);
    mPlatform.boxes.whileOpen = [this](const MessageBoxRequest&) { Arrive("3"); };
    Arrive("2");
    Arrive("4");
    EXPECT_EQ(Told(mPlatform), Texts{ReportBox("TerminalControl.Capture", "(61) Disk full")});
    EXPECT_EQ(AllText(), "1234");
    EXPECT_EQ(mCom.CaptureFile(), "");
    mPlatform.files.FailOn(kPath, 0);
    EXPECT_EQ(mPlatform.files.ReadAll(kPath), "1");
}

TEST_F(TerminalControlTest, AWindowClosedBehindTheReportOfAFailedCaptureIsNotTouched) {
    mCom.CaptureFile(kPath);
    mPlatform.files.FailOn(kPath, 61);
    mPlatform.boxes.whileOpen = [this](const MessageBoxRequest&) {
        mCom.PerformCommand(TerminalCommand::Close);
        mWindow->Unload();
        mWindow.reset();
    };
    Arrive("x");
    EXPECT_EQ(Told(mPlatform).size(), 1u);
    EXPECT_FALSE(mPlatform.ports.IsOpen("COM3"));
}

TEST_F(TerminalControlTest, TheOwnerMayHandleACommandOfTheMenu) {
    std::vector<TerminalCommand> raised;
    bool handle = true;
    mCom.Command.Connect([&](TerminalCommand command, bool& handled) {
        raised.push_back(command);
        handled = handle;
    });
    mCom.Invoke(TerminalCommand::Close);
    EXPECT_TRUE(mCom.PortOpen()) << "handled by its owner";
    handle = false;
    mCom.Invoke(TerminalCommand::Close);
    EXPECT_FALSE(mCom.PortOpen());
    EXPECT_EQ(raised.size(), 2u);
    mCom.PerformCommand(TerminalCommand::Open);
    mCom.Command.Connect([this](TerminalCommand, bool& handled) {
        handled = true;
        mCom.Invoke(TerminalCommand::Close);
    });
    mCom.Invoke(TerminalCommand::Settings);
    EXPECT_TRUE(mCom.PortOpen()) << "its owner was busy and is not passed over";
}

TEST_F(TerminalControlTest, CopyTakesTheSelectionAndLeavesTheClipboardWithoutOne) {
    mPlatform.clipboard.Text("kept");
    mCom.PerformCommand(TerminalCommand::Copy);
    mCom.PerformCommand(TerminalCommand::SelectAll);
    mCom.PerformCommand(TerminalCommand::Copy);
    EXPECT_EQ(mPlatform.clipboard.Text(), "kept");
    Arrive("12.5 kg\r\n\x80 \xF1");
    mCom.PerformCommand(TerminalCommand::SelectAll);
    mCom.PerformCommand(TerminalCommand::Copy);
    EXPECT_EQ(mPlatform.clipboard.Text(), "12.5 kg\r\n€ ñ");
}

TEST_F(TerminalControlTest, AViewMovedUpStaysUntilItsUserOrATransmissionReturns) {
    mCom.ScreenSize(20, 5);
    for (int i = 0; i < 50; ++i) Arrive("line\r\n");
    EXPECT_EQ(mCom.FirstShownLine(), 46);
    mCom.ScrollTo(10);
    Arrive("line\r\n");
    EXPECT_EQ(mCom.FirstShownLine(), 10);
    mCom.Key("x");
    EXPECT_EQ(mCom.FirstShownLine(), 47);
    mCom.ScrollTo(-5);
    EXPECT_EQ(mCom.FirstShownLine(), 0);
    mCom.FollowOutput(true);
    Arrive("line\r\n");
    EXPECT_EQ(mCom.FirstShownLine(), 48);
    mCom.ScrollTo(3);
    mCom.PerformCommand(TerminalCommand::Clear);
    EXPECT_EQ(mCom.FirstShownLine(), mCom.Screen().TopLine());
}

TEST_F(TerminalControlTest, WhatCannotBeSentIsNotAndBeeps) {
    const auto beeps = [this](const std::function<void()>& user) {
        mPlatform.clock.Sleep(1000);
        mPlatform.boxes.beeps = 0;
        user();
        return mPlatform.boxes.beeps;
    };
    EXPECT_EQ(beeps([this] { mCom.Type("?ñ"); }), 0);
    EXPECT_EQ(beeps([this] { mCom.Type("Ω"); }), 1);
    mPlatform.clipboard.Text("ok\r\n\r\n1 Ω");
    EXPECT_EQ(beeps([this] { mCom.Paste(); }), 0);
    EXPECT_EQ(
        Told(mPlatform),
        Texts{"!||Nothing was pasted. This character cannot be sent: Ω (U+03A9), in line 3."});
    EXPECT_EQ(mWire.received, "?\xF1");
    mWire.gone = true;
    mCom.PerformCommand(TerminalCommand::Open);
    EXPECT_FALSE(mCom.PortOpen()) << "a lost port is no open one";
    mWire.gone = false;
    mCom.PerformCommand(TerminalCommand::Open);
    mWire.gone = true;
    EXPECT_EQ(beeps([this] { mCom.Key("a"); }), 1) << "lost, and nobody knew";
    EXPECT_EQ(beeps([this] { mCom.Paste(); }), 1);
    EXPECT_EQ(Told(mPlatform).size(), 1u);
}

TEST_F(TerminalControlTest, BellsAreHeardFourTimesASecondAtMost) {
    const std::uint32_t start = mPlatform.clock.Milliseconds();
    while (mPlatform.clock.Milliseconds() - start < 1000) Arrive("\a\a");
    EXPECT_EQ(mPlatform.boxes.beeps, 4);
}

TEST_F(TerminalControlTest, AMarkGoesWithItsText) {
    Arrive("one\r\ntwo");
    mCom.SelectAll();
    Arrive(" more\r\nthree");
    EXPECT_EQ(mCom.SelectedText(), "one\r\ntwo");
    Arrive("\x1B[Hx");
    EXPECT_TRUE(mCom.Selection().Empty()) << "overwritten";
    mCom.SelectAll();
    std::string lines;
    for (int i = 0; i < 11'000; ++i) lines += "\r\n";
    Arrive(lines);
    EXPECT_TRUE(mCom.Selection().Empty()) << "dropped out of the history";
}

}  // namespace
}  // namespace vantor
