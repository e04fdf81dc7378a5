// What a serial driver is asked for. The calls of the port to the system are replaced.
#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>

#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "tests/windows/Replaced.hpp"

#include <gtest/gtest.h>

namespace vantor {
namespace {

struct Driver {
    DCB block{};
    DWORD events = 0;
    COMMTIMEOUTS timeouts{};
    DWORD queueBytes = 0;
    OVERLAPPED* wait = nullptr;
    int waits = 0;
    std::string signals;
    DWORD modemLines = 0;
    DWORD errors = 0;

    void EndWait() {
        if (wait == nullptr) return;
        wait->Internal = 0;
        SetEvent(std::exchange(wait, nullptr)->hEvent);
    }
} gDriver;

}  // namespace

REPLACED(GetCommState, [](HANDLE, DCB*) { return TRUE; });
REPLACED(PurgeComm, [](HANDLE, DWORD) { return TRUE; });
REPLACED(ClearCommError, [](HANDLE, DWORD* errors, COMSTAT*) {
    *errors = std::exchange(gDriver.errors, 0);
    return TRUE;
});
REPLACED(SetCommBreak, [](HANDLE) {
    gDriver.signals += "break on; ";
    return TRUE;
});
REPLACED(ClearCommBreak, [](HANDLE) {
    gDriver.signals += "break off; ";
    return TRUE;
});
REPLACED(EscapeCommFunction, [](HANDLE, DWORD function) {
    constexpr std::array kNames = {"RTS on; ", "RTS off; ", "DTR on; ", "DTR off; "};
    gDriver.signals += kNames.at(function - SETRTS);
    return TRUE;
});
REPLACED(GetCommModemStatus, [](HANDLE, DWORD* lines) {
    *lines = gDriver.modemLines;
    return TRUE;
});
REPLACED(SetCommState, [](HANDLE, DCB* block) {
    gDriver.block = *block;
    return TRUE;
});
REPLACED(SetCommMask, [](HANDLE, DWORD events) {
    gDriver.events = events;
    gDriver.EndWait();
    return TRUE;
});
REPLACED(SetCommTimeouts, [](HANDLE, COMMTIMEOUTS* timeouts) {
    gDriver.timeouts = *timeouts;
    return TRUE;
});
REPLACED(SetupComm, [](HANDLE, DWORD in, DWORD out) {
    gDriver.queueBytes = std::min(in, out);
    return TRUE;
});
REPLACED(WaitCommEvent, [](HANDLE, DWORD*, OVERLAPPED* wait) {
    constexpr ULONG_PTR kPending = 0x103;  // STATUS_PENDING
    ++gDriver.waits;
    gDriver.wait = wait;
    wait->Internal = kPending;
    SetLastError(ERROR_IO_PENDING);
    return FALSE;
});

namespace {

class Serial : public testing::Test {
protected:
    void Open(const LineSettings& line) {
        gDriver = {};
        port = OpenWin32SerialPort(pump, L"NUL", line);
    }

    Win32MessagePump pump;
    std::unique_ptr<SerialPort> port;
};

TEST_F(Serial, TheLineIsRawWithBothSignalsOnAndTheWantedFormat) {
    const struct {
        LineSettings line;
        BYTE parity;
        BYTE stopBits;
    } kRows[] = {{{38400, Parity::None, 8, 2}, NOPARITY, TWOSTOPBITS},
                 {{9600, Parity::Odd, 7, 1}, ODDPARITY, ONESTOPBIT},
                 {{115200, Parity::Even, 8, 1}, EVENPARITY, ONESTOPBIT}};
    for (const auto& [line, parity, stopBits] : kRows) {
        Open(line);
        const DCB& block = gDriver.block;
        EXPECT_EQ(block.BaudRate, line.bitsPerSecond);
        EXPECT_EQ(block.ByteSize, line.dataBits);
        EXPECT_EQ(block.Parity, parity);
        EXPECT_EQ(block.fParity, parity == NOPARITY ? 0u : 1u);
        EXPECT_EQ(block.StopBits, stopBits);
        EXPECT_EQ(block.fBinary, 1u);
        EXPECT_EQ(block.fDtrControl, DWORD{DTR_CONTROL_ENABLE});
        EXPECT_EQ(block.fRtsControl, DWORD{RTS_CONTROL_ENABLE});
        EXPECT_EQ(block.fOutxCtsFlow + block.fOutxDsrFlow + block.fOutX + block.fInX, 0u);
        EXPECT_NE(block.XonChar, block.XoffChar) << "refused by drivers";
        EXPECT_EQ(gDriver.timeouts.ReadIntervalTimeout, MAXDWORD);
        EXPECT_EQ(gDriver.timeouts.ReadTotalTimeoutConstant, 0u);
        EXPECT_EQ(gDriver.timeouts.WriteTotalTimeoutConstant, 0u);
        EXPECT_GE(gDriver.queueBytes, 65536u);
        port.reset();
    }
}

TEST_F(Serial, FlowControlIsTheDriversWithLimitsThatItsFirstQueueHolds) {
    Open({250000, Parity::None, 8, 1, FlowControl::Hardware});
    const DCB hardware = gDriver.block;
    EXPECT_EQ(hardware.BaudRate, 250000u);
    EXPECT_EQ(hardware.fRtsControl, DWORD{RTS_CONTROL_HANDSHAKE});
    EXPECT_EQ(hardware.fDtrControl, DWORD{DTR_CONTROL_ENABLE});
    EXPECT_TRUE(hardware.fOutxCtsFlow && !hardware.fOutX && !hardware.fInX);
    port.reset();
    Open({9600, Parity::None, 8, 1, FlowControl::Software});
    const DCB software = gDriver.block;
    EXPECT_EQ(software.fRtsControl, DWORD{RTS_CONTROL_ENABLE});
    EXPECT_TRUE(!software.fOutxCtsFlow && software.fOutX && software.fInX);
    EXPECT_TRUE(software.fTXContinueOnXoff) << "a full queue here would stop the output";
    EXPECT_EQ(software.XonChar, 0x11);
    EXPECT_EQ(software.XoffChar, 0x13);
    for (const DCB& block : {hardware, software}) {
        EXPECT_FALSE(block.fAbortOnError) << "an error would end all transfers";
        EXPECT_TRUE(block.XonLim > 0 && block.XoffLim > 0 && block.XonLim + block.XoffLim < 4096);
    }
}

TEST_F(Serial, SignalsAreSetAndABreakEndsWithThePort) {
    for (const auto& [flowControl, signals] :
         {std::pair{FlowControl::None, "DTR off; RTS off; DTR on; RTS on; break on; break off; "},
          std::pair{FlowControl::Hardware, "DTR off; DTR on; break on; break off; "}}) {
        Open({9600, Parity::None, 8, 1, flowControl});
        for (const bool on : {false, true}) {
            port->Dtr(on);
            port->Rts(on);
        }
        port->Break(true);
        port.reset();
        EXPECT_EQ(gDriver.signals, signals);
    }
}

TEST_F(Serial, EveryModemLineIsReadAndEveryErrorCountedWhicheverCallClearsIt) {
    Open({});
    constexpr DWORD kBits[] = {MS_CTS_ON, MS_DSR_ON, MS_RLSD_ON, MS_RING_ON};
    constexpr ModemLines kLines[] = {{.cts = true}, {.dsr = true}, {.dcd = true}, {.ri = true}};
    for (std::size_t i = 0; i < 4; ++i) {
        gDriver.modemLines = kBits[i];
        EXPECT_EQ(port->Lines(), kLines[i]) << i;
    }
    constexpr DWORD kErrors[] = {CE_FRAME, CE_RXPARITY | CE_FRAME, CE_OVERRUN, CE_RXOVER, CE_BREAK};
    for (const DWORD errors : kErrors) {
        gDriver.errors = errors;
        port->InputCount();
    }
    EXPECT_EQ(port->Errors(), (LineErrors{.framing = 2, .parity = 1, .overrun = 2}));
    port.reset();
}

// An adapter holds back a reply without an event character, or while nobody waits for its event.
TEST_F(Serial, TheEndOfAReplyIsAnEventThatIsAwaitedAgainAfterEachOne) {
    Open({38400, Parity::None, 8, 2});
    EXPECT_EQ(gDriver.block.EvtChar, '\r');
    EXPECT_EQ(gDriver.events, DWORD{EV_RXCHAR | EV_RXFLAG});
    EXPECT_EQ(gDriver.waits, 0);
    port->NotifyOnInput([] {});
    EXPECT_EQ(gDriver.events, DWORD{EV_RXCHAR | EV_RXFLAG});
    for (int waits = 1; waits < 4; ++waits) {
        const ULONGLONG start = GetTickCount64();
        while (gDriver.waits < waits && GetTickCount64() - start < 10'000) pump.PumpPending();
        ASSERT_EQ(gDriver.waits, waits);
        gDriver.EndWait();
    }
    port->NotifyOnInput({});
    EXPECT_EQ(gDriver.wait, nullptr) << "would write to freed memory";
}

}  // namespace
}  // namespace vantor
