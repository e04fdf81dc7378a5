// One command or line and its reply: terminators, the order of the reply words, pacing,
// and replies that never count as success.
#include "flash/SerialLink.hpp"

#include <gtest/gtest.h>

#include "app/frmMain.hpp"
#include "flash/SerialControl.hpp"
#include "settings/CAppSettings.hpp"
#include "tests/unit/Table.hpp"
#include "tests/unit/Wire.hpp"

namespace vantor {
namespace {

class LinkTest : public testing::Test {
protected:
    LinkTest() {
        headless.ports.Plug("COM1", far);
        window->Load();
        link.SetupCommPortFlash();
        comm.Open();
    }
    ~LinkTest() override {
        comm.Close();
        window->Unload();
    }

    SendResult Send(std::string text, bool paced = false) {
        auto result = SendResult::SendOK;
        link.SendData(text, paced, result);
        return result;
    }

    ReportingPlatform headless;
    std::shared_ptr<frmMain> window =
        std::make_shared<frmMain>(headless.manager, headless.platform);
    Wire far;
    SerialControl comm{headless.ports, {}};
    FlashFlags flags;
    SerialLink link{*window, comm, flags, window->Settings(), headless.clock, headless.pump};
};

TEST_F(LinkTest, EveryTextGoesOutWithOneReturnAndTheFirstKnownWordOfTheReplyWins) {
    ExpectTable("link", [this](const Words& words) {
        far.received.clear();
        far.onReceive = [this, reply = words.at(1)] { far.sent = reply; };
        std::string text = words.at(0);
        auto result = SendResult::SendOK;
        link.SendData(text, false, result);
        EXPECT_EQ(text, far.received);
        EXPECT_EQ(comm.InBufferCount(), 0u);
        constexpr std::array<const char*, 4> kNames = {" OK", " failed", " done", " verify failed"};
        return text + kNames.at(static_cast<std::size_t>(result));
    });
}

TEST_F(LinkTest, AClosedPortSendsNothingAndFails) {
    comm.Close();
    EXPECT_EQ(Send("L"), SendResult::SendFailed);
    link.RawSend("raw");
    EXPECT_EQ(far.received, "");
    EXPECT_TRUE(Told(headless).empty());
}

TEST_F(LinkTest, WhateverGoesWrongInsideTheResultIsNeverOK) {
    // 20 s from here exceed the clock's signed range.
    headless.clock.Set(0x7fffffffu - 5000u);
    far.onReceive = [&] { far.sent = "OK"; };
    EXPECT_EQ(Send("L"), SendResult::SendFailed);
    EXPECT_EQ(Told(headless), Texts{ReportBox("frmMain.SendData", "(6) Overflow")});
}

TEST_F(LinkTest, APacedSendWaitsAfterEachCharacter) {
    std::vector<std::int32_t> times;
    far.onReceive = [&] {
        times.push_back(headless.clock.Ticks());
        if (times.size() == 4) far.sent = "OK";
    };
    EXPECT_EQ(Send("A\xe9z", true), SendResult::SendOK);
    EXPECT_EQ(far.received, "A\xe9z\r");
    ASSERT_EQ(times.size(), 4u);
    EXPECT_GE(times[3] - times[0], 150);
    EXPECT_GE(headless.clock.Ticks() - times[3], 50);
}

}  // namespace
}  // namespace vantor
