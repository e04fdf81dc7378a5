// What the programs rely on from the event loop.
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

using MessagePumpContract = Contract<PumpSubject>;

// The last window may close before the loop begins.
TEST_P(MessagePumpContract, AQuitEndsTheRunThatItIsCalledInOrElseTheNextOne) {
    MessagePump& pump = subject->Get();
    int ticks = 0;
    const TimerId timer = pump.StartTimer(1, [&] {
        if (++ticks == 3) pump.Quit();
    });
    pump.Quit();
    pump.Run();
    EXPECT_EQ(ticks, 0);
    pump.Run();
    EXPECT_EQ(ticks, 3);
    pump.StopTimer(timer);
}

TEST_P(MessagePumpContract, AQuitEndsTheInnermostRunAlone) {
    MessagePump& pump = subject->Get();
    std::string order;
    const TimerId timer = pump.StartTimer(1, [&] {
        if (!order.empty()) return pump.Quit();
        order = "enter ";
        pump.Run();
        order += "inner ";
    });
    pump.Run();
    EXPECT_EQ(order, "enter inner ");
    pump.StopTimer(timer);
}

INSTANTIATE_CONTRACT(MessagePumpContract, HeadlessPumps, NativePumps);

}  // namespace vantor::contract
