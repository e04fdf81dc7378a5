// What no scenario can place: a process that stops between two steps of the message pump.
#include "flash/FlashSession.hpp"

#include <gmock/gmock.h>

#include <memory>

#include "tests/faults/SessionBoxes.hpp"
#include "tests/unit/SessionFixture.hpp"

namespace vantor {
namespace {

using testing::ElementsAre;

TEST_F(SessionFixture, AProcessStoppedAtAnyPointFindsTheVerdictBeforeItsTimeIsUp) {
    Connect(ImageOf(30));
    WhenStatusIs("Updating Indicator", [&] {
        const auto stop = std::make_shared<SourceId>();
        const TimerId timer = headless.pump.StartTimer(10, [&, stop] {
            // Polled after the port: the process stops between that poll and the timer check.
            if (*stop == 0)
                *stop = headless.pump.AddSource([&, stop] {
                    headless.pump.RemoveSource(*stop);
                    headless.clock.Sleep(70000);
                });
        });
        headless.pump.StartTimer(20, [&, timer] { headless.pump.StopTimer(timer); });
    });
    Flash();
    EXPECT_THAT(Boxes(), ElementsAre(kDone));
}

}  // namespace
}  // namespace vantor
