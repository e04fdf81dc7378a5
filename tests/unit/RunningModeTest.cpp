// The indicator's running mode, as used for practice with a terminal.
#include "simulator/RunningMode.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vantor {
namespace {

TEST(RunningMode, EchoesAndAnswersLineByLine) {
    RunningMode indicator;
    const struct {
        const char* typed;
        const char* seen;
    } steps[] = {
        {"gro", "gro"},
        {"ss\r", "ss\r\n    125.40 kg G\r\n"},
        {"TARX\b", "TARX\b \b"},
        {"E\r\n", "E\r\nOK\r\n"},
        {"\b\x1B", ""},
        {"units = lb\r", "units = lb\r\nOK\r\n"},
        {"decimals=1\r", "decimals=1\r\nOK\r\n"},
        {"clear\rnet\r", "clear\r\nOK\r\nnet\r\n     125.4 lb N\r\n"},
        {"units=stone\r", "units=stone\r\n??\r\n"},
        {"id=Dock 7\rid\r", "id=Dock 7\r\nOK\r\nid\r\nDock 7\r\n"},
        {"weigh\r", "weigh\r\n??\r\n"},
    };
    for (const auto& step : steps)
        EXPECT_EQ(indicator.Receive(step.typed), step.seen) << step.typed;
    EXPECT_EQ(indicator.Receive(std::string(200, 'x')).size(), 80u) << "a line has its limit";
}

}  // namespace
}  // namespace vantor
