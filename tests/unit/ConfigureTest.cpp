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

}  // namespace
}  // namespace vantor
