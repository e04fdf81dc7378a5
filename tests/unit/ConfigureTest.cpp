// The options dialog as the user operates it, opened from the menu of the main window.
#include <gtest/gtest.h>

#include "Wire.hpp"
#include "app/frmMain.hpp"
#include "settings/frmConfigure.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

using User = std::function<void(frmConfigure&)>;

const std::string kAdvice =
    "i||It is recommended that a baud rate above 19200 be used for communications. Baud rates "
    "below 38400 result in an increased download time.";

class ConfigureTest : public testing::Test {
protected:
    ConfigureTest() {
        for (const char* name : {"COM1", "COM3", "COM10", "AUX"}) mPlatform.ports.Plug(name, mWire);
        mMain->Load();
        mMain->Show();
    }
    ~ConfigureTest() override { mMain->Unload(); }

    /// Opens the dialog, runs `user` on it, and closes it if `user` has not.
    void Open(const User& user) {
        mPlatform.peers.whileModal = [&user](Form& form) {
            user(dynamic_cast<frmConfigure&>(form));
        };
        mMain->mnuToolsOptions.Press();
        EXPECT_EQ(mPlatform.peers.open, Texts{"frmMain"});
    }
    std::string Stored(const std::string& name) const {
        const std::string all = mPlatform.registry.Export();
        const std::size_t at = all.find("\n\"" + name + "\"=\"");
        if (at == std::string::npos) return "nothing";
        const std::size_t begin = at + name.size() + 5;
        return all.substr(begin, all.find('"', begin) - begin);
    }
    static void Pick(ComboBox& combo, const std::string& text) {
        combo.Choose(FindStringComboBox(combo, text));
    }
    void Remember(const std::string& key, const std::string& value) {
        mPlatform.registry.Import(RegistryWith(key, value + "\n"));
    }

    ReportingPlatform mPlatform;
    Wire mWire;
    std::shared_ptr<frmMain> mMain =
        std::make_shared<frmMain>(mPlatform.manager, mPlatform.platform);
};

TEST_F(ConfigureTest, OpensOnTheSerialPageWithWhatIsSet) {
    Open([this](frmConfigure& dialog) {
        // One letter from the left, vertically centred in 390 twips.
        EXPECT_EQ(dialog.picSelection.PrintedTexts(),
                  (std::vector<PictureBox::Printed>{{100, 95, "Tahoma", "Settings"}}));
        EXPECT_EQ(dialog.cboPort.Items(), (Texts{"COM1", "COM3", "COM10"}));
        EXPECT_EQ(dialog.cboPort.Text() + "," + dialog.cboBaudRate.Text() + "," +
                      dialog.cboParity.Text() + "," + dialog.cboDataBits.Text() + "," +
                      dialog.cboStopBits.Text(),
                  "COM1,38400,N - None,8,2");
        for (bool valid : {false, true}) {
            mMain->Settings().Valid(valid);
            EXPECT_EQ(dialog.cmdOK.Enabled() && dialog.cmdApply.Enabled(), valid);
        }
    });
}

TEST_F(ConfigureTest, WhatIsSetAndNotListedIsNotChosen) {
    Remember("Settings",
             "\"Port\"=\"COM7\"\n\"Baud\"=\"19200\"\n\"Parity\"=\"e\"\n\"DataBits\"=\"7\"");
    mMain->Settings().Initialize();
    Open([](frmConfigure& dialog) {
        for (const ComboBox* combo :
             {&dialog.cboPort, &dialog.cboBaudRate, &dialog.cboParity, &dialog.cboDataBits})
            EXPECT_EQ(combo->ListIndex(), -1) << combo->Name();
        dialog.cmdOK.Press();
    });
    EXPECT_EQ(Stored("Port") + Stored("Baud"), "COM719200");
}

// A list control may report a selection while it is filled.
TEST_F(ConfigureTest, FillingTheListsAssignsNothing) {
    int picks = 0;
    bool inside = false;
    mPlatform.peers.onChange = [&](const Control& control, Property) {
        if (control.Kind() != ControlKind::ComboBox || inside) return;
        inside = true;
        ComboBox& combo = dynamic_cast<ComboBox&>(const_cast<Control&>(control));
        combo.Choose(static_cast<int>(combo.Items().size()) - 1);
        inside = false;
        ++picks;
    };
    Open([this](frmConfigure& dialog) {
        mPlatform.peers.onChange = {};
        dialog.cmdOK.Press();
    });
    EXPECT_EQ(picks, 10);
    EXPECT_EQ(Told(mPlatform), Texts{});
    EXPECT_EQ(Stored("Port"), "nothing") << "OK with no change writes nothing";
}

TEST_F(ConfigureTest, EveryCloseButOkIsCancel) {
    const User ways[] = {
        [](frmConfigure& dialog) { dialog.cmdCancel.Press(); },
        [](frmConfigure& dialog) { dialog.Unload(); },
        [](frmConfigure&) {},
        [this](frmConfigure& dialog) {  // while the advice box is open
            mPlatform.boxes.whileOpen = [&](const MessageBoxRequest&) { dialog.Unload(); };
            Pick(dialog.cboBaudRate, "9600");
            mPlatform.boxes.whileOpen = {};
        },
    };
    for (const User& way : ways) {
        Open([&way](frmConfigure& dialog) {
            Pick(dialog.cboPort, "COM3");
            way(dialog);
        });
        EXPECT_EQ(mMain->Settings().CommPort() + mMain->Settings().BaudRate(), "COM138400");
        EXPECT_EQ(Stored("Port"), "nothing");
        EXPECT_NO_THROW(mMain->Settings().BeginEdit()) << "left in an edit";
        mMain->Settings().CancelEdit();
        EXPECT_FALSE(mMain->Settings().Valid);
    }
    EXPECT_EQ(Told(mPlatform), Texts{kAdvice});
}

TEST_F(ConfigureTest, ASlowSpeedIsAdvisedAgainstOnceAndKept) {
    Open([this](frmConfigure& dialog) {
        Pick(dialog.cboBaudRate, "38400");
        EXPECT_EQ(Told(mPlatform), Texts{});
        // Set again after the box closes, regardless of events meanwhile.
        mPlatform.boxes.whileOpen = [this](const MessageBoxRequest&) {
            EXPECT_EQ(mMain->Settings().BaudRate(), "9600");
            mMain->Settings().BaudRate("300");
        };
        Pick(dialog.cboBaudRate, "9600");
        dialog.cmdOK.Press();
    });
    EXPECT_EQ(Told(mPlatform), Texts{kAdvice});
    EXPECT_EQ(Stored("Baud"), "9600  ");
}

// Whatever size and state another version has stored.
TEST_F(ConfigureTest, OfTheWindowsRecordOnlyTheCornerCounts) {
    const struct {
        const char* record;
        Place place;
    } rows[] = {{"", {10545, 5677.5f, 7710, 4845}},  // centred on the screen
                {"L=307;T=600;W=9000;H=90;S=0;", {300, 600, 7710, 4845}},
                {"L=300;T=600;W=9000;H=9000;S=2;", {10545, 5677.5f, 7710, 4845}}};
    for (const auto& row : rows) {
        Remember("Positions", "\"frmConfigure\"=\"" + std::string(row.record) + "\"");
        Open([&row](frmConfigure& dialog) {
            EXPECT_EQ(dialog.Place(), row.place) << row.record;
            EXPECT_EQ(dialog.State(), WindowState::Normal);
        });
    }
}

}  // namespace
}  // namespace vantor
