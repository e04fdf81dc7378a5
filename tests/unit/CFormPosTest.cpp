// Window positions: what is stored, the effect of a stored record, and the resulting geometry.
#include "app/base/CFormPos.hpp"

#include <gtest/gtest.h>

#include "app/MainLayout.hpp"
#include "app/frmMain.hpp"
#include "dialogs/frmAbout.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

class CFormPosTest : public testing::Test {
protected:
    CFormPosTest() {
        position.Form = window.get();
        window->Load();
        window->Place({1, 2, 3000, 4000});
    }

    /// The registry with `record` in it, as text.
    static std::string With(const std::string& record) {
        return RegistryWith("Positions", "\"frmAbout\"=\"" + record + "\"\n");
    }
    void Store(const std::string& record) { headless.registry.Import(With(record)); }

    ReportingPlatform headless;  // a screen of 28800 by 16200 twips
    std::shared_ptr<frmAbout> window =
        std::make_shared<frmAbout>(headless.manager, headless.strings);
    CFormPos position{headless.registry, headless.codePage};
};

TEST_F(CFormPosTest, ARecordIsAppliedMarkerByMarker) {
    const struct {
        const char* record;
        bool keepOnScreen;
        Place place;
        WindowState state;
    } rows[] = {
        {"L=10;T=20;W=300.5;H=400;S=0;", false, {10, 20, 300.5f, 400}, WindowState::Normal},
        {"W=300;S=0;", false, {1, 2, 300, 4000}, WindowState::Normal},
        {"L=abc;T=-5;W=300;H=400;S=0;", false, {0, -5, 300, 400}, WindowState::Normal},
        {"L=10;T=20;W=300;H=400;S=2;", true, {1, 2, 3000, 4000}, WindowState::Maximised},
        {"L=10;T=20;W=300;H=400;S=1;", true, {1, 2, 3000, 4000}, WindowState::Minimised},
        {"L=28800;T=16200;W=300;H=400;S=0;", true, {28500, 15800, 300, 400}, WindowState::Normal},
        {"L=28799;T=-1;W=300;H=400;S=0;", true, {28799, 0, 300, 400}, WindowState::Normal},
        {"L=30000;T=0;W=40000;H=400;S=0;", true, {0, 0, 40000, 400}, WindowState::Normal},
    };
    for (const auto& row : rows) {
        window->Place({1, 2, 3000, 4000});
        window->State(WindowState::Normal);
        Store(row.record);
        EXPECT_TRUE(position.RestoreForm(row.keepOnScreen));
        EXPECT_EQ(window->Place(), row.place) << row.record;
        EXPECT_EQ(window->State(), row.state) << row.record;
    }
}

TEST_F(CFormPosTest, WithoutASoundRecordNothingMovesAndTheCentreIsTheScreens) {
    EXPECT_FALSE(position.RestoreForm(true));
    Store("");
    EXPECT_FALSE(position.RestoreForm(true));
    for (const auto& [record, error] :
         {std::pair{"L=1e300;T=5;", "6. Overflow"}, std::pair{"L=3e9;T=5;", "6. Overflow"},
          std::pair{"T=5;W=-1;", "380. Invalid property value"}}) {
        Store(record);
        EXPECT_FALSE(position.RestoreForm(true));
        EXPECT_EQ(Told(headless).back(), std::string("none|RestoreForm|Error: ") + error);
    }
    EXPECT_EQ(window->Place(), (Place{1, 2, 3000, 4000}));
    position.CenterForm();
    EXPECT_EQ(window->Place(), (Place{12900, 6100, 3000, 4000}));
}

TEST_F(CFormPosTest, WhatIsSavedIsRestored) {
    window->Place({-15, 30.5f, 8400, 6600});
    position.SaveForm();
    EXPECT_EQ(headless.registry.Export(), With("L=-15;T=30.5;W=8400;H=6600;S=0;"));
    window->Place({});
    EXPECT_TRUE(position.RestoreForm(false));
    EXPECT_EQ(window->Place(), (Place{-15, 30.5f, 8400, 6600}));
}

bool Within(const Place& inner, const Place& outer) {
    return inner.left >= 0 && inner.top >= 0 && inner.width > 0 && inner.height > 0 &&
           inner.left + inner.width <= outer.width && inner.top + inner.height <= outer.height;
}

TEST(MainLayout, NothingIsCutOffOrHiddenBehindAnotherAtAnySize) {
    for (const Size size : {Size{0, 0}, Size{7200, 5100}, Size{8280, 5800}, Size{28800, 15000}}) {
        const MainLayout at = LayoutMainWindow(size);
        EXPECT_LE(at.picture.top + at.picture.height, at.panel.top);
        for (const Place& place :
             {at.welcome, at.flash, at.flashLabels[0], at.flashLabels[1], at.status, at.elapsed,
              at.progress, at.warning, at.abort, at.updatesLabel, at.updates, at.updateStatus,
              at.details, at.download, at.downloadAll})
            EXPECT_TRUE(Within(place, at.panel))
                << place.left << "," << place.top << " of " << size.width << "x" << size.height;
        EXPECT_LE(at.welcome.top + at.welcome.height, at.flash.top);
        EXPECT_LE(at.elapsed.top + at.elapsed.height, at.progress.top);
        EXPECT_LE(at.progress.top + at.progress.height, at.warning.top);
        EXPECT_LE(at.warning.top + at.warning.height, at.abort.top);
        EXPECT_LE(at.updates.top + at.updates.height, at.updateStatus.top);
        EXPECT_GE(at.warning.height, 1000) << "the warning needs three lines";
    }
}

}  // namespace
}  // namespace vantor
