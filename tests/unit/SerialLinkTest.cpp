// One command or line and its reply: terminators, the order of the reply words, pacing,
// and replies that never count as success.
#include "flash/SerialLink.hpp"

#include <gmock/gmock.h>

#include "flash/SerialControl.hpp"
#include "settings/CAppSettings.hpp"
#include "tests/unit/SessionFixture.hpp"
#include "tests/unit/Wire.hpp"

namespace vantor {
namespace {

class LinkFixture : public SessionFixture {
protected:
    LinkFixture() {
        headless.ports.Plug("COM1", far);
        link.SetupCommPortFlash();
        comm.Open();
    }
    ~LinkFixture() override { comm.Close(); }

    SendResult Send(std::string text, bool paced = false) {
        auto result = SendResult::SendOK;
        link.SendData(text, paced, result);
        return result;
    }

    Wire far;
    SerialControl comm{headless.ports, {}};
    FlashFlags flags;
    SerialLink link{*window, comm, flags, window->Settings(), headless.clock, headless.pump};
};

TEST_F(LinkFixture, EveryTextGoesOutWithExactlyOneCarriageReturn) {
    const std::pair<std::string, std::string> rows[] = {{"ABC", "ABC\r"},   {"ABC\r\n", "ABC\r"},
                                                        {"ABC\r", "ABC\r"}, {"", "\r"},
                                                        {"A\n", "A\n\r"},   {"\r\n", "\r"}};
    for (const auto& [text, sent] : rows) {
        far.received.clear();
        far.onReceive = [&] { far.sent = "OK"; };
        std::string changed = text;
        auto result = SendResult::SendFailed;
        link.SendData(changed, false, result);
        EXPECT_EQ(far.received, sent);
        EXPECT_EQ(changed, sent);
        EXPECT_EQ(result, SendResult::SendOK);
    }
}

TEST_F(LinkFixture, TheFirstKnownWordInTheOrderOfTheTestsWins) {
    const std::pair<std::string, SendResult> rows[] = {
        {"??OKxx", SendResult::SendOK},
        {"??OK DONE", SendResult::SendDone},
        {"DONE OK VERIFY FAILED", SendResult::SendVerifyFailed},
        {"ok ??", SendResult::SendFailed},
    };
    for (const auto& [reply, result] : rows) {
        far.onReceive = [this, text = reply] { far.sent = text; };
        EXPECT_EQ(Send("L"), result) << reply;
        EXPECT_EQ(comm.InBufferCount(), 0u);
    }
}

TEST_F(LinkFixture, ATextThatIsNoReplyFailsAfterTwentySecondsAndAWordInPiecesIsFound) {
    far.onReceive = [&] { far.sent = "ok O K ? ? DON E"; };
    const std::int32_t start = headless.clock.Ticks();
    EXPECT_EQ(Send("L"), SendResult::SendFailed);
    EXPECT_NEAR(headless.clock.Ticks() - start, 20000, 5);

    far.onReceive = [&] {
        far.sent = "O";
        headless.pump.StartTimer(300, [&] { far.sent = "K"; });
    };
    EXPECT_EQ(Send("L"), SendResult::SendOK);
}

TEST_F(LinkFixture, AClosedPortSendsNothingAndFails) {
    comm.Close();
    EXPECT_EQ(Send("L"), SendResult::SendFailed);
    link.RawSend("raw");
    EXPECT_EQ(far.received, "");
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(LinkFixture, WhateverGoesWrongInsideTheResultIsNeverOK) {
    // 20 s from here exceed the clock's signed range.
    headless.clock.Set(0x7fffffffu - 5000u);
    far.onReceive = [&] { far.sent = "OK"; };
    EXPECT_EQ(Send("L"), SendResult::SendFailed);
    EXPECT_EQ(Boxes(), Texts{ReportBox("frmMain.SendData", "(6) Overflow")});
}

TEST_F(LinkFixture, APacedSendWaitsAfterEachCharacter) {
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
