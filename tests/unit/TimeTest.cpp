// The stopwatch, the wait loop, the timer and the pump of waits, on a clock that only pumps and
// sleeps advance.
#include <gtest/gtest.h>

#include <optional>

#include "app/base/modSupport.hpp"
#include "support/CDelay.hpp"
#include "support/CMMTimer.hpp"
#include "support/Timer.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

struct Subject {
    Subject() {
        delay.Waiting = [this](bool& cancel) { cancel = ++passes == cancelAt; };
    }

    ReportingPlatform platform;
    CMMTimer watch{platform.clock};
    CDelay delay{platform.clock, platform.pump};
    int passes = 0;
    int cancelAt = 0;
    int ticks = 0;
    std::optional<Timer> timer{std::in_place, platform.pump, 10, [this] { ++ticks; }};
    std::string out;
};

const Verbs<Subject> kVerbs = {
    {"sleep",
     [](Subject& s, Argument ms) {
         s.platform.clock.Sleep(static_cast<std::uint32_t>(std::stoul(ms)));
     }},
    {"start", [](Subject& s, Argument) { s.watch.StartTimer(); }},
    {"stop", [](Subject& s, Argument) { s.watch.StopTimer(); }},
    {"resume", [](Subject& s, Argument) { s.watch.ResumeTimer(); }},
    {"scale", [](Subject& s, Argument factor) { s.watch.ScaleFactor = std::stoi(factor); }},
    {"elapsed", [](Subject& s, Argument) { s.out += Row(s.watch.ElapsedTime(), ""); }},
    {"delay", [](Subject& s, Argument ms) { s.delay.Delay(ToInt16(ms)); }},
    {"cancel-at", [](Subject& s, Argument pass) { s.cancelAt = std::stoi(pass); }},
    {"counts",  // milliseconds, pumps and passes of the wait loop
     [](Subject& s, Argument) {
         s.out += Row(s.platform.clock.Milliseconds(), s.platform.pump.pumps, s.passes, "");
     }},
    {"timer", [](Subject& s, Argument on) { s.timer->Enabled(on == "on"); }},
    {"timer-gone", [](Subject& s, Argument) { s.timer.reset(); }},
    {"ticks",  // after so many pumps
     [](Subject& s, Argument pumps) {
         for (int i = std::stoi(pumps); i > 0; --i) s.platform.pump.PumpPending();
         s.out += Row(s.ticks, "");
     }},
    {"nice-pumps",
     [](Subject& s, Argument count) {
         for (int i = std::stoi(count); i > 0; --i) DoEventsNice(s.platform.pump);
     }},
    {"fails",  // each pump
     [](Subject& s, Argument) { s.platform.pump.AddSource([] { throw RuntimeError(6); }); }},
};

TEST(Time, PassesAsTheTableSays) {
    ExpectTable("time", kVerbs);
}

}  // namespace
}  // namespace vantor
