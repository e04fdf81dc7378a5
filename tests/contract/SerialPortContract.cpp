// Contract of SerialPorts and SerialPort, as the serial link requires it.
#include <array>
#include <functional>

#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class SerialPortContract : public Contract {
protected:
    void SetUp() override {
        if (farEnd == nullptr) GTEST_SKIP() << "nothing is connected to the port";
    }

    std::unique_ptr<SerialPort> Open(const LineSettings& line = {115200, Parity::None, 8, 2}) {
        return ports->Open(portName, line);
    }

    /// `count` bytes that arrive at the port, or at the far end; fewer on a time-out.
    std::string Read(SerialPort& port, std::size_t count) {
        return Collect(count, [&port] {
            std::array<char, 100> buffer{};
            return std::string(buffer.data(), port.Read(buffer));
        });
    }
    std::string FarEndReads(std::size_t count) {
        return Collect(count, [this] { return farEnd->Receive(); });
    }
    std::string Collect(std::size_t count, const std::function<std::string()>& read) {
        std::string bytes;
        for (int idle = 0; bytes.size() < count && idle < kPatience; ++idle) {
            const std::string some = read();
            bytes += some;
            if (some.empty()) clock->Sleep(1);
            if (!some.empty()) idle = -1;
        }
        return bytes;
    }

    bool Becomes(const std::function<bool()>& condition) {
        for (int i = 0; i < kPatience; ++i, clock->Sleep(1))
            if (condition()) return true;
        return false;
    }

    static constexpr int kPatience = 1000;
    static constexpr char kXon = 0x11;
    static constexpr char kXoff = 0x13;
};
INSTANTIATE_CONTRACT(SerialPortContract);

TEST_P(SerialPortContract, APortIsListedAndOneThatDoesNotExistIsError68) {
    std::string names;
    for (const SerialPortInfo& port : ports->List()) names += port.name + ";";
    EXPECT_NE(names.find(portName + ";"), std::string::npos) << names;
    for (const char* name : {"COM31", "COM33", "COM0", ""})
        EXPECT_EQ(Raised([&] { ports->Open(name, {}); }).Number(), 68) << name;
}

TEST_P(SerialPortContract, AnOpenPortIsBusyUntilItIsClosedAndARefusedOpenLeavesItFree) {
    EXPECT_EQ(Raised([&] { Open({0, Parity::None, 8, 1}); }).Number(), 5);
    auto port = Open();
    EXPECT_EQ(Raised([&] { Open(); }).Number(), 70);
    port.reset();
    EXPECT_EQ(Raised([&] { Open({9600, Parity::None, 8, 1}); }).Number(), 0);
}

// A pseudo-terminal shows that the port opens with these settings, and XOFF. It does not show the
// speed (PortTest reads it back), has no CTS, and never sends XOFF itself.
TEST_P(SerialPortContract, ALineOfAnySpeedAndFlowControlCarriesEachByteBothWaysOnce) {
    using enum FlowControl;
    for (const LineSettings& line :
         {LineSettings{12345, Parity::None, 8, 1}, LineSettings{250000, Parity::None, 8, 1},
          LineSettings{3000000, Parity::None, 8, 1},
          LineSettings{9600, Parity::None, 8, 1, Hardware},
          LineSettings{9600, Parity::None, 8, 1, Software},
          LineSettings{115200, Parity::None, 8, 2}}) {
        const auto port = Open(line);
        std::string bytes = AllBytes();
        if (line.flowControl == Software)
            std::erase_if(bytes, [](char byte) { return byte == kXon || byte == kXoff; });
        farEnd->Send(bytes);
        EXPECT_EQ(Read(*port, bytes.size()), bytes) << line.bitsPerSecond;
        EXPECT_EQ(port->Write(bytes), bytes.size()) << line.bitsPerSecond;
        // One more is waited for where the next line would not see it.
        const std::size_t beyond = line.bitsPerSecond == 115200 ? 1 : 0;
        EXPECT_EQ(FarEndReads(bytes.size() + beyond), bytes) << line.bitsPerSecond;
        EXPECT_EQ(port->InputCount(), 0u) << "an echo";
    }
}

TEST_P(SerialPortContract, XoffHoldsTheOutputUntilXonAndNeitherIsData) {
    const auto port = Open({9600, Parity::None, 8, 1, FlowControl::Software});
    farEnd->Send({&kXoff, 1});
    farEnd->Send("stopped");
    EXPECT_EQ(Read(*port, 7), "stopped");
    std::size_t written = port->Write("data");
    for (int i = 0; i < 50; ++i, clock->Sleep(1)) EXPECT_EQ(farEnd->Receive(), "");
    farEnd->Send({&kXon, 1});
    EXPECT_TRUE(Becomes([&] { return written != 0 || (written = port->Write("data")) != 0; }));
    EXPECT_EQ(FarEndReads(4), "data");
    EXPECT_EQ(port->InputCount(), 0u);
}

// As a pseudo-terminal is. It hides whether a port that has the lines sets and reads them: for
// POSIX and Windows, tests with replaced system calls show that.
TEST_P(SerialPortContract, APortWithoutModemLinesIgnoresThemAndCarriesBytesOn) {
    const auto port = Open();
    for (const bool on : {true, false, true}) {
        port->Break(on);
        port->Dtr(!on);
        port->Rts(!on);
    }
    port->Break(false);
    EXPECT_EQ(port->Lines(), std::nullopt);
    EXPECT_EQ(port->Errors(), LineErrors{});
    EXPECT_EQ(port->Write("data"), 4u);
    EXPECT_EQ(FarEndReads(5), "data");
}

TEST_P(SerialPortContract, WhatWaitsIsCountedAndDiscardedAndNeverWaitedFor) {
    auto port = Open();
    EXPECT_EQ(port->InputCount(), 0u);
    std::array<char, 2> two{};
    EXPECT_EQ(port->Read(two), 0u);
    farEnd->Send("+12345");
    EXPECT_TRUE(Becomes([&] { return port->InputCount() == 6; }));
    EXPECT_EQ(port->Read(two), 2u);
    EXPECT_EQ(port->InputCount(), 4u);
    port->DiscardInput();
    EXPECT_EQ(port->InputCount(), 0u);
    farEnd->Send("stale");
    EXPECT_TRUE(Becomes([&] { return port->InputCount() == 5; }));
    port.reset();
    port = Open();
    farEnd->Send("fresh");
    EXPECT_EQ(Read(*port, 5), "fresh") << "old input was taken for an answer";
}

TEST_P(SerialPortContract, NothingIsLostWhenTheDriverTakesAWriteInParts) {
    const auto port = Open();
    std::string sent;
    while (sent.size() < 65536) sent += AllBytes();
    std::string received;
    std::size_t written = 0;
    while (written < sent.size()) {
        const std::size_t accepted = port->Write(std::string_view(sent).substr(written));
        written += accepted;
        if (accepted != 0) continue;
        const std::string some = FarEndReads(written - received.size());
        ASSERT_FALSE(some.empty()) << "stuck after " << written;
        received += some;
    }
    received += FarEndReads(sent.size() - received.size());
    EXPECT_TRUE(received == sent) << received.size();
    EXPECT_TRUE(Becomes([&] { return port->OutputCount() == 0; }));
}

TEST_P(SerialPortContract, EachPumpTellsOfWaitingBytesUntilTheyAreRead) {
    const auto port = Open();
    int calls = 0;
    port->NotifyOnInput([&] { ++calls; });
    pump->PumpPending();
    EXPECT_EQ(calls, 0);
    farEnd->Send("ab");
    const auto pumped = [&] { return pump->PumpPending(), calls; };
    EXPECT_TRUE(Becomes([&] { return pumped() >= 2; }));
    EXPECT_EQ(Read(*port, 2), "ab");
    pump->PumpPending();  // a notification may be pending
    const int before = calls;
    EXPECT_EQ(pumped(), before);
    port->NotifyOnInput({});
    farEnd->Send("c");
    EXPECT_TRUE(Becomes([&] { return port->InputCount() == 1; }));
    EXPECT_EQ(pumped(), before);
}

TEST_P(SerialPortContract, ANotificationMayCloseThePort) {
    auto port = Open();
    port->NotifyOnInput([&] { port.reset(); });
    farEnd->Send("x");
    EXPECT_TRUE(Becomes([&] { return pump->PumpPending(), port == nullptr; }));
    pump->PumpPending();
}

TEST_P(SerialPortContract, ADeviceThatGoesAwayIsError57FromEveryOperationAndToldOnce) {
    const auto port = Open();
    int calls = 0;
    port->NotifyOnInput([&] { ++calls; });
    farEnd->HangUp();
    EXPECT_TRUE(Becomes([&] { return pump->PumpPending(), calls > 0; }));
    pump->PumpPending();
    EXPECT_EQ(calls, 1);
    std::array<char, 4> buffer{};
    const std::function<void()> kOperations[] = {
        [&] { port->InputCount(); },  [&] { port->Read(buffer); },   [&] { port->Write("x"); },
        [&] { port->OutputCount(); }, [&] { port->DiscardInput(); }, [&] { port->Break(true); },
        [&] { port->Dtr(false); },    [&] { port->Rts(false); },     [&] { port->Lines(); },
        [&] { port->Errors(); }};
    for (const auto& operation : kOperations) EXPECT_EQ(Raised(operation).Number(), 57);
}

}  // namespace vantor::contract
