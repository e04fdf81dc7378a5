// Monitor mode as the user operates it: windows, capture and sending, on virtual time.
#include <gtest/gtest.h>

#include "Wire.hpp"
#include "app/frmMain.hpp"
#include "monitor/frmMonitor.hpp"
#include "monitor/frmPortSettings.hpp"
#include "monitor/frmSend.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

const std::string kFile = "C:\\files\\setup.txt";
const Texts kPortTrouble = {
    "!||Unable to open communications port. Check your settings and try again."};

class MonitorTest : public testing::Test {
protected:
    MonitorTest() {
        mPlatform.ports.Plug("COM1", mWire);
        mWire.onReceive = [this] { mSentAt.push_back(mPlatform.clock.Milliseconds()); };
        mMain->Load();
        mMain->Show();
        mMonitor = Open();
    }
    ~MonitorTest() override {
        mMonitor->Unload();
        mMain->Unload();
    }

    /// Opens another monitor window from the menu.
    std::shared_ptr<frmMonitor> Open() {
        mMain->mnuToolsMonitor.Press();
        return std::dynamic_pointer_cast<frmMonitor>(mPlatform.manager.OpenForms().back());
    }
    std::string Panels() const {
        std::string text;
        for (const StatusBar::Panel& panel : mMonitor->sbStatusBar.Panels())
            text += panel.text + "|";
        return text;
    }
    /// The progress window opened last.
    std::shared_ptr<frmSend> Progress() {
        std::shared_ptr<frmSend> found;
        for (const auto& form : mPlatform.manager.OpenForms())
            if (auto send = std::dynamic_pointer_cast<frmSend>(form)) found = send;
        return found;
    }
    /// Opens the port and sends `contents`; the texts of the progress window are stored in mStatus.
    bool Send(const std::string& contents) {
        mPlatform.files.Add(kFile, contents);
        mMonitor->mnuCommOpen.Press();
        mPlatform.peers.onChange = [this](const Control& control, Property property) {
            if (control.Name() != "lblStatus" || property != Property::Repaint) return;
            mStatus.push_back(control.Caption());
            EXPECT_TRUE(mWire.received.ends_with('\r')) << "the progress runs ahead of the line";
        };
        return mMonitor->SendFile(kFile);
    }
    /// Runs `what` once, after `ms`.
    void After(std::uint32_t ms, std::function<void()> what) {
        mPlatform.pump.StartTimer(ms, [what, done = std::make_shared<bool>(false)] {
            if (!std::exchange(*done, true)) what();
        });
    }

    ReportingPlatform mPlatform;
    Wire mWire;
    std::vector<std::uint32_t> mSentAt;
    std::shared_ptr<frmMain> mMain =
        std::make_shared<frmMain>(mPlatform.manager, mPlatform.platform);
    std::shared_ptr<frmMonitor> mMonitor;
    Texts mStatus;
};

TEST_F(MonitorTest, TheSettingsCommandUpdatesBothPanelsAndReopens) {
    Wire other;
    mPlatform.ports.Plug("COM4", other);
    mMonitor->comMonitor.Port().name = "COM9";
    mMonitor->mnuCommClose.Press();
    const auto choose = [this](const std::function<void(frmPortSettings&)>& user) {
        mPlatform.peers.whileModal = [&user](Form& form) {
            user(dynamic_cast<frmPortSettings&>(form));
        };
        mMonitor->comMonitor.Invoke(TerminalCommand::Settings);
    };
    choose([](frmPortSettings& dialog) {
        EXPECT_EQ(dialog.cboPort.Items(), (Texts{"COM1", "COM4", "COM9"})) << "with that in use";
        EXPECT_EQ(dialog.cboPort.Text() + dialog.cboSpeed.Text() + dialog.cboParity.Text() +
                      dialog.cboDataBits.Text() + dialog.cboStopBits.Text(),
                  "COM938400None82");
        dialog.cboPort.Choose(1);
        dialog.cboSpeed.Choose(FindStringComboBox(dialog.cboSpeed, "9600"));
        dialog.cboParity.Choose(2);
        dialog.cboDataBits.Choose(0);
        dialog.cboStopBits.Choose(0);
        dialog.cmdOK.Press();
    });
    EXPECT_EQ(Panels(), "Disconnected|COM4|9600,E,7,1|");
    EXPECT_FALSE(mMonitor->mnuCaptureSend.Enabled());

    mMonitor->mnuCommOpen.Press();
    EXPECT_EQ(other.line, (LineSettings{9600, Parity::Even, 7, 1}));
    choose([](frmPortSettings& dialog) {
        dialog.cboPort.Choose(0);
        dialog.cmdCancel.Press();
    });
    EXPECT_EQ(Panels(), "Connected|COM4|9600,E,7,1|");
    mMonitor->comMonitor.Port().settings = "9600,e,7,1";
    other.line = {};
    choose([](frmPortSettings& dialog) { dialog.cmdOK.Press(); });
    mMonitor->mnuCommOpen.Press();
    EXPECT_EQ(other.line, LineSettings{}) << "opened anew without a change";
    EXPECT_EQ(Told(mPlatform), Texts{});
    mPlatform.ports.Hold("COM1", true);
    choose([](frmPortSettings& dialog) {
        dialog.cboPort.Choose(0);
        dialog.cmdOK.Press();
    });
    EXPECT_EQ(Panels(), "Disconnected|COM1|9600,E,7,1|") << "opened anew on a port that is busy";
    EXPECT_EQ(Told(mPlatform), kPortTrouble);
}

TEST_F(MonitorTest, ASecondWindowIsBesideTheFirst) {
    const Place first = mMonitor->Place();
    const std::shared_ptr<frmMonitor> second = Open();
    EXPECT_EQ(second->Place(),
              (Place{first.left + 375, first.top + 375, first.width, first.height}));
    second->Unload();
    EXPECT_EQ(mMonitor->Place(), first);
}

TEST_F(MonitorTest, ACloseOfTheMainWindowThatWaitsGoesOnWhenTheMonitorUnloads) {
    mMain->Session().Flags().mblnFlashing = true;
    mMain->Unload();
    mMonitor->Unload();
    EXPECT_FALSE(mMain->Gone()) << "the flash comes first";
    mMonitor = Open();
    mMain->Session().Flags().mblnFlashing = false;
    mMonitor->Unload();
    EXPECT_TRUE(mMain->Gone());
}

TEST_F(MonitorTest, CapturesIntoTheFileThatWasConfirmed) {
    mPlatform.files.CreateFolders("/tmp");
    mMonitor->mnuCommOpen.Press();
    const auto arrive = [this](const char* bytes) {
        mWire.sent = bytes;
        mPlatform.pump.PumpPending();
    };
    mPlatform.dialogs.choices = {"/tmp/a.txt"};
    mMonitor->mnuCaptureStart.Press();
    arrive("one\r\n");
    mMonitor->mnuCaptureStart.Press();
    arrive("two");
    mWire.sent = "waiting";
    mMonitor->mnuCaptureEnd.Press();
    mMonitor->mnuCaptureEnd.Press();
    arrive("three");
    EXPECT_EQ(mPlatform.files.ReadAll("/tmp/a.txt"), "one\r\ntwowaiting")
        << "a cancel changes nothing, and what has arrived belongs to it";
    const FileDialogRecord& asked = mPlatform.dialogs.shown.at(0);
    EXPECT_EQ(asked.title + asked.defaultExtension, "Capture Filename.txt");
    EXPECT_EQ(asked.flags, 2050u);
    EXPECT_TRUE(asked.filter.starts_with(
        std::string("Text Files (*.txt)\0*.txt\0All Files (*.*)\0*.*\0\0", 47)));
    mPlatform.dialogs.choices = {"/none/a.txt"};
    mMonitor->mnuCaptureStart.Press();
    EXPECT_EQ(Told(mPlatform),
              Texts{ReportBox("frmMonitor.mnuCaptureStart_Click", "(76) Path not found")});
}

TEST_F(MonitorTest, SendsTheLinesOfAFileAtTheirPace) {
    const std::uint32_t start = mPlatform.clock.Milliseconds();
    EXPECT_TRUE(Send("A\r\n  B \r\n\r\n   \r\nC\nD\rE\r\n"));
    EXPECT_EQ(mWire.received, "A\r  B \rC\nD\rE\r");
    ASSERT_EQ(mSentAt.size(), 3u);
    EXPECT_LT(mSentAt[0] - start, 10u);
    for (std::size_t i = 1; i < 3; ++i) {
        EXPECT_GE(mSentAt[i] - mSentAt[i - 1], 50u);
        EXPECT_LE(mSentAt[i] - mSentAt[i - 1], 52u) << "blank lines take no time";
    }
    EXPECT_EQ(mStatus, (Texts{"Line 0 of 5 ", "Line 1 of 5 ", "Line 4 of 5 "}));
    EXPECT_EQ(mPlatform.peers.open, (Texts{"frmMain", "frmMonitor"}));
    EXPECT_FALSE(mMonitor->comMonitor.FollowOutput());
    EXPECT_EQ(Told(mPlatform), Texts{});
}

TEST_F(MonitorTest, SendsOnlyWhatIsThere) {
    EXPECT_FALSE(Send(""));
    EXPECT_FALSE(Send(" \r\n\r\n"));
    EXPECT_FALSE(mMonitor->SendFile("C:\\files\\none.txt"));
    EXPECT_FALSE(mMonitor->SendFile(""));
    EXPECT_EQ(mWire.received, "");
    EXPECT_EQ(Told(mPlatform), Texts{});
    EXPECT_TRUE(Send("no line end"));
    EXPECT_EQ(mWire.received, "no line end\r");
    mPlatform.files.Add("C:\\files\\hidden.txt", "x");
    mPlatform.files.SetHidden("C:\\files\\hidden.txt");
    EXPECT_FALSE(mMonitor->SendFile("C:\\files\\hidden.txt")) << "no normal file";
    mPlatform.files.FailOn(kFile, 70);
    EXPECT_FALSE(mMonitor->SendFile(kFile));
    EXPECT_EQ(Told(mPlatform), Texts{"none|GetFile|Error: 70. Permission denied"});
    EXPECT_EQ(mWire.received, "no line end\r");
    EXPECT_EQ(mPlatform.peers.open, (Texts{"frmMain", "frmMonitor"}));
}

TEST_F(MonitorTest, ASecondFileCanBeSentDuringTheFirst) {
    mPlatform.files.Add("C:\\files\\second.txt", "a\r\nb\r\n");
    mPlatform.files.Add(kFile, "1\r\n2\r\n3\r\n");
    mPlatform.dialogs.choices = {kFile, "C:\\files\\second.txt"};
    mMonitor->mnuCommOpen.Press();
    After(60, [this] { mMonitor->mnuCaptureSend.Press(); });
    mMonitor->mnuCaptureSend.Press();
    EXPECT_EQ(mWire.received, "1\r2\ra\rb\r3\r");
    EXPECT_EQ(mPlatform.dialogs.shown.at(0).title, "Send Filename");
    EXPECT_EQ(mPlatform.peers.open, (Texts{"frmMain", "frmMonitor"}));
}

TEST_F(MonitorTest, ACancelOrAClosedWindowEndsASendAfterTheLineInProgress) {
    const std::function<void()> ways[] = {
        [this] { Progress()->cmdCancel.Press(); },
        [this] { Progress()->Unload(); },
        [this] { mMonitor->Unload(); },
        [this] { mMain->Unload(); },
    };
    for (const auto& end : ways) {
        mWire.received.clear();
        std::uint32_t endedAt = 0;
        After(60, [&] {
            end();
            EXPECT_FALSE(mMonitor->Gone() && Progress()) << "the system would take it along";
            endedAt = mPlatform.clock.Milliseconds();
        });
        EXPECT_FALSE(Send("1\r\n2\r\n3\r\n4\r\n"));
        EXPECT_LE(mPlatform.clock.Milliseconds() - endedAt, mMonitor->Gone() ? 2u : 50u)
            << "the wait went on";
        EXPECT_EQ(mWire.received, "1\r2\r");
        EXPECT_EQ(Progress(), nullptr);
        EXPECT_EQ(Told(mPlatform), Texts{});
        if (mMonitor->Gone() && !mMain->Gone()) mMonitor = Open();
    }
    EXPECT_EQ(mPlatform.peers.open, Texts{});
}

TEST_F(MonitorTest, ASendEndsWithThePortAndSaysSo) {
    const std::function<void()> ways[] = {
        [this] { mWire.gone = true; },
        [this] { mMonitor->mnuCommClose.Press(); },
    };
    for (const auto& end : ways) {
        mWire.received.clear();
        mWire.gone = false;
        mPlatform.boxes.shown.clear();
        After(60, end);
        EXPECT_FALSE(Send("1\r\n2\r\n3\r\n4\r\n"));
        EXPECT_EQ(mWire.received, "1\r2\r");
        EXPECT_EQ(Told(mPlatform), kPortTrouble);
        EXPECT_EQ(Progress(), nullptr);
    }
}

TEST_F(MonitorTest, AnUpdateIsNotHeldUpByASend) {
    After(60, [this] { mMain->Session().Flags().mblnFlashing = true; });
    EXPECT_FALSE(Send("1\r\n2\r\n3\r\n"));
    EXPECT_EQ(mWire.received, "1\r2\r");
    mMonitor->mnuCaptureSend.Press();
    EXPECT_TRUE(mPlatform.dialogs.shown.empty());
    EXPECT_EQ(mPlatform.boxes.beeps, 1);
    // A close does not delay the update either: it does not drain the line then.
    mPlatform.ports.LimitWrites(1);
    mMonitor->comMonitor.Key("0123456789");
    mMonitor->mnuCommClose.Press();
    EXPECT_LT(mWire.received.size(), 10u);
    mMain->Session().Flags().mblnFlashing = false;
}

TEST_F(MonitorTest, OnASlowLineTheProgressKeepsToItACancelEndsItAndACloseWaitsForIt) {
    mPlatform.ports.LimitWrites(1);
    const std::string longLine(100, 'x');
    EXPECT_TRUE(Send(longLine + "\r\n2\r\n"));
    EXPECT_EQ(mStatus, (Texts{"Line 0 of 2 ", "Line 1 of 2 "}));
    mWire.received.clear();
    After(60, [this] { Progress()->cmdCancel.Press(); });
    mPlatform.peers.onChange = {};
    mPlatform.files.Add(kFile, longLine + "\n2\n3\n");
    EXPECT_FALSE(mMonitor->SendFile(kFile));
    mMonitor->mnuCommClose.Press();
    EXPECT_EQ(mWire.received, longLine + "\n") << "the line that had begun, and no more";
}

}  // namespace
}  // namespace vantor
