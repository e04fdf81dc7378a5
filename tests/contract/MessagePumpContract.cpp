// What the programs rely on from the event loop.
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class MessagePumpContract : public Contract {};
INSTANTIATE_CONTRACT(MessagePumpContract);

// The last window may close before the loop begins.
TEST_P(MessagePumpContract, AQuitEndsTheRunThatItIsCalledInOrElseTheNextOne) {
    int ticks = 0;
    const TimerId timer = pump->StartTimer(1, [&] {
        if (++ticks == 3) pump->Quit();
    });
    pump->Quit();
    pump->Run();
    EXPECT_EQ(ticks, 0);
    pump->Run();
    EXPECT_EQ(ticks, 3);
    pump->StopTimer(timer);
}

TEST_P(MessagePumpContract, AQuitEndsTheInnermostRunAlone) {
    std::string order;
    const TimerId timer = pump->StartTimer(1, [&] {
        if (!order.empty()) return pump->Quit();
        order = "enter ";
        pump->Run();
        order += "inner ";
    });
    pump->Run();
    EXPECT_EQ(order, "enter inner ");
    pump->StopTimer(timer);
}

}  // namespace vantor::contract
