// Contract of Clock, as intervals, delays and reports require it.
#include <chrono>

#include "support/Conversions.hpp"
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class ClockContract : public Contract {};
INSTANTIATE_CONTRACT(ClockContract);

TEST_P(ClockContract, ASleepLastsAtLeastAsLongAsAskedFor) {
    for (const std::uint32_t ms : {0u, 1u, 30u}) {
        const std::uint32_t start = clock->Milliseconds();
        clock->Sleep(ms);
        const std::uint32_t passed = clock->Milliseconds() - start;
        // Two millisecond counters, each rounded down, may differ by 1.
        EXPECT_GE(passed + 1, ms);
        EXPECT_LT(passed, ms + 500) << "seconds taken for milliseconds?";
    }
}

TEST_P(ClockContract, TheDateIsOneThatACalendarKnows) {
    const DateTime now = clock->Now();
    EXPECT_GE(now.year, 2024);
    EXPECT_TRUE(now.month >= 1 && now.month <= 12) << now.month;
    EXPECT_TRUE(now.day >= 1 && now.day <= 31) << now.day;
    EXPECT_TRUE(now.hour <= 23 && now.minute <= 59 && now.second <= 60) << FormatDateTime(now);

    using namespace std::chrono;
    const sys_days day = year(now.year) / now.month / now.day;
    const auto seconds =
        day.time_since_epoch() / 1s + now.hour * 3600 + now.minute * 60 + now.second;
    const std::int64_t later = clock->LocalMilliseconds() - seconds * 1000;
    EXPECT_TRUE(later >= 0 && later < 1500) << later;  // `Now` is rounded down
}

}  // namespace vantor::contract
