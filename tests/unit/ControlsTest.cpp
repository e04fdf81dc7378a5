// Windows, their translation and events, without a screen. The translated windows are scenarios.
#include <gtest/gtest.h>

#include <stdexcept>

#include "app/base/LoadResources.hpp"
#include "controls/Controls.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

constexpr std::array kRows = {
    ControlDesign{ControlKind::CommandButton, "cmdGo", -1, "", {}, "Go", ""},
    ControlDesign{ControlKind::CommandButton, "cmdStop", -1, "", {}, "Stop", ""}};
const FormDesign kDesign = {"frmTest", "", "", {}, kRows};
const FormDesign kEmpty = {"frmEmpty", "", "", {}, {}};
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

TEST_F(ControlsTest, TheLastWindowEndsTheProgramAndNoOther) {
    const auto other = std::make_shared<Window>(mPlatform);
    mWindow->Load();
    other->Load();
    mPlatform.pump.StartTimer(5, [this] { mWindow->Unload(); });
    mPlatform.pump.StartTimer(50, [&other] { other->Unload(); });
    mPlatform.pump.Run();
    EXPECT_TRUE(other->Gone());
}

TEST_F(ControlsTest, ValuesOutOfRangeAreRefused) {
    struct All : Form {
        using Form::Form;
        ProgressBar bar{*this, "bar"};
        ComboBox combo{*this, "combo"};
        StatusBar status{*this, "status", {"port"}};
        PictureBox picture{*this, "picture"};
    };
    const auto form = std::make_shared<All>(mPlatform.manager, kEmpty);
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
    refused(9, [&] { form->status.PanelText("none", ""); });
    form->picture.CurrentX = 5;
    form->picture.Print("a");
    EXPECT_EQ(form->picture.CurrentX, 0) << "the next line does not start at the left";
}

// A row names the caption of the menu, the tags of label, button, picture and window.
TEST(LoadResources, MistakesEndItWhereTheyStandAndAreReportedUnderTheWindow) {
    ExpectTable("translation", [](const Words& words) {
        const auto row = [](ControlKind kind, const char* caption, const char* tag) {
            return ControlDesign{kind, caption, -1, "", {}, caption, tag};
        };
        const std::array rows = {row(ControlKind::MenuItem, words.at(0).c_str(), ""),
                                 row(ControlKind::Label, "label", words.at(1).c_str()),
                                 row(ControlKind::PictureBox, "pic", words.at(3).c_str()),
                                 row(ControlKind::CommandButton, "button", words.at(2).c_str())};
        const FormDesign design = {"frmTest", "title", words.at(4).c_str(), {}, rows};
        ReportingPlatform platform;
        const auto window = std::make_shared<Form>(platform.manager, design);
        const MenuItem menu{*window, words[0]};
        const Label label{*window, "label"};
        const PictureBox picture{*window, "pic"};
        const CommandButton button{*window, "button"};
        window->Load();
        LoadResources(*window, platform.strings,
                      words.size() > 5 ? Translate::WithoutMenusAndTitle : Translate::All);
        std::string shown;
        for (const Control* control : window->Controls()) shown += control->Caption() + "|";
        shown += window->Caption();
        window->Unload();
        for (const std::string& box : Told(platform)) shown += "|" + box.substr(box.find('\n') + 1);
        return shown;
    });
}

}  // namespace
}  // namespace vantor
