// The port of the controls beyond the flash session: its signals, flow control, and a lost device.
#include "controls/BufferedPort.hpp"

#include <gtest/gtest.h>

#include "platform/headless/HeadlessPlatform.hpp"
#include "tests/unit/Wire.hpp"

namespace vantor {
namespace {

class BufferedPortTest : public testing::Test {
protected:
    BufferedPortTest() {
        ports.Plug("COM1", wire);
        port.name = "1";
        port.settings = "250000,E,7,1";
    }
    void UseSignals() {
        port.Dtr(false);
        port.Rts(false);
        port.Break(true);
    }

    HeadlessClock clock;
    HeadlessPump pump{clock};
    HeadlessSerialPorts ports{pump};
    Wire wire;
    BufferedPort port{ports};
};

TEST_F(BufferedPortTest, SignalsAndFlowControlReachAnOpenPortAndStateComesBack) {
    UseSignals();
    EXPECT_EQ(port.Lines(), std::nullopt);
    EXPECT_EQ(wire.signals, "") << "of a closed port";

    wire.modem = ModemLines{.cts = true, .ri = true};
    wire.errors = {.framing = 1, .parity = 2, .overrun = 3};
    port.flowControl = FlowControl::Hardware;
    port.Open({});
    EXPECT_EQ(wire.line, (LineSettings{250000, Parity::Even, 7, 1, FlowControl::Hardware}));
    UseSignals();
    EXPECT_EQ(port.Lines(), wire.modem);
    EXPECT_EQ(port.Errors(), wire.errors);
    port.Close();
    EXPECT_EQ(wire.signals, "DTR off; break on; break off; ") << "RTS is that of flow control";
}

TEST_F(BufferedPortTest, OutputHeldByFlowControlIsSentWithCtsOrDropped) {
    wire.modem = ModemLines{};
    port.flowControl = FlowControl::Hardware;
    port.Open({});
    port.Output("one\rtwo\r");
    EXPECT_EQ(port.OutBufferCount(), 8u);
    port.DropPendingLines();
    EXPECT_EQ(port.OutBufferCount(), 4u);
    port.DropPending();
    EXPECT_EQ(port.OutBufferCount(), 0u);
    port.Output("three");
    wire.modem->cts = true;
    EXPECT_TRUE(port.FlushPending());
    EXPECT_EQ(wire.received, "three");
}

TEST_F(BufferedPortTest, ALostDeviceClosesThePortAtWhicheverOperation) {
    using Operation = void (*)(BufferedPort&);
    constexpr Operation kOperations[] = {
        [](BufferedPort& lost) { lost.Break(true); }, [](BufferedPort& lost) { lost.Dtr(false); },
        [](BufferedPort& lost) { lost.Rts(false); }, [](BufferedPort& lost) { lost.Lines(); },
        [](BufferedPort& lost) { lost.Errors(); }};
    for (const Operation operation : kOperations) {
        wire.gone = false;
        port.Open({});
        ASSERT_TRUE(port.IsOpen());
        wire.gone = true;
        operation(port);
        EXPECT_FALSE(port.IsOpen());
    }
}

}  // namespace
}  // namespace vantor
