// Monitor mode as the user operates it: windows, capture and sending, on virtual time.
#include <gtest/gtest.h>

#include "Wire.hpp"
#include "app/frmMain.hpp"
#include "monitor/frmMonitor.hpp"
#include "monitor/frmPortSettings.hpp"
#include "monitor/frmSend.hpp"
#include "rehearsal/ReportingPlatform.hpp"

namespace vantor {
namespace {

const std::string kFile = "C:\\files\\setup.txt";

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
        return std::dynamic_pointer_cast<frmMonitor>(mPlatform.desktop.OpenForms().back());
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
        for (const auto& form : mPlatform.desktop.OpenForms())
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
        std::make_shared<frmMain>(mPlatform.desktop, mPlatform.platform);
    std::shared_ptr<frmMonitor> mMonitor;
    Texts mStatus;
};

TEST_F(MonitorTest, TheSettingsCommandUpdatesBothPanelsAndReopens) {
    Wire other;
    mPlatform.ports.Plug("COM4", other);
    mMonitor->comMonitor.Port("COM9");
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
    mPlatform.ports.Hold("COM1", true);
    choose([](frmPortSettings& dialog) {
        dialog.cboPort.Choose(0);
        dialog.cmdOK.Press();
    });
    EXPECT_EQ(Panels(), "Disconnected|COM1|9600,E,7,1|") << "opened anew on a port that is busy";
}

TEST_F(MonitorTest, ACloseOfTheMainWindowThatWaitsGoesOnWhenTheMonitorUnloads) {
    mMain->Flags().mblnFlashing = true;
    mMain->Unload();
    mMonitor->Unload();
    EXPECT_FALSE(mMain->Gone()) << "the flash comes first";
    mMonitor = Open();
    mMain->Flags().mblnFlashing = false;
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
    mMonitor->mnuCaptureEnd.Press();
    mMonitor->mnuCaptureEnd.Press();
    arrive("three");
    EXPECT_EQ(mPlatform.files.ReadAll("/tmp/a.txt"), "one\r\ntwo") << "a cancel changes nothing";
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

}  // namespace
}  // namespace vantor
