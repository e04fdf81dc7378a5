// The stopwatch and the wait loop, on a clock controlled by the tests.
#include <gtest/gtest.h>

#include "support/CDelay.hpp"
#include "support/CMMTimer.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

TEST(Stopwatch, ItsRunsAddUpAndPausesDoNotCount) {
    HeadlessClock clock;
    CMMTimer watch(clock);
    EXPECT_EQ(watch.ElapsedTime(), 0);
    clock.Sleep(500);
    watch.StartTimer();
    clock.Sleep(1500);
    EXPECT_EQ(watch.ElapsedTime(), 1.5);
    for (int stop = 1; stop <= 2; ++stop) {
        watch.StopTimer();
        clock.Sleep(9000);
        EXPECT_EQ(watch.ElapsedTime(), 1.5) << "it ran on, or a second stop counted again";
    }
    watch.ResumeTimer();
    clock.Sleep(250);
    EXPECT_EQ(watch.ElapsedTime(), 1.75);
    watch.ScaleFactor = 10;
    EXPECT_EQ(watch.ElapsedTime(), 175);
    watch.StopTimer();
    watch.StartTimer();
    EXPECT_EQ(watch.ElapsedTime(), 0) << "a new start must forget the old runs";
}

// Each pump is a millisecond of this clock: a sleep in the loop would reduce the number of pumps.
TEST(Delay, PumpsOnEveryPassAndNeverSleepsUntilTheTimeIsUpOrACancelComes) {
    HeadlessPlatform platform;
    CDelay delay(platform.clock, platform.pump);
    const std::uint32_t start = platform.clock.Milliseconds();
    int passes = 0;
    delay.Waiting = [&passes](bool&) { ++passes; };
    for (const int ms : {0, -1, -32768}) delay.Delay(static_cast<std::int16_t>(ms));
    EXPECT_EQ(passes, 0) << "asked although the time was up";
    delay.Delay(250);
    EXPECT_EQ(platform.clock.Milliseconds(), start + 250);
    EXPECT_EQ(platform.pump.pumps, 250u);
    EXPECT_EQ(passes, 250);
    delay.Waiting = [&passes](bool& cancel) { cancel = ++passes == 253; };
    delay.Delay(32767);
    EXPECT_EQ(platform.pump.pumps, 252u) << "a pump after the cancel";
}

}  // namespace
}  // namespace vantor
