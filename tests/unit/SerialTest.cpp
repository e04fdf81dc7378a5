// The serial control, the port below it, and the exchange of a line for its reply.
#include <gtest/gtest.h>

#include "app/frmMain.hpp"
#include "flash/SerialControl.hpp"
#include "flash/SerialLink.hpp"
#include "support/LineSettings.hpp"
#include "tests/unit/Table.hpp"
#include "tests/unit/Wire.hpp"

namespace vantor {
namespace {

struct Line {
    Line() {
        platform.ports.Plug("COM3", wire);
        comm.name = "COM3";
        comm.settings = "9600,E,7,1";
        port.name = "3";
        port.settings = "250000,E,7,1";
        comm.Receive.Connect([this] { out += "<" + comm.Input() + "> "; });
        wire.onReceive = [this] {
            if (wire.received.ends_with('\r')) wire.sent += reply;
        };
    }
    ~Line() { comm.Close(); }
    void Send(std::string text, bool paced) {
        constexpr std::array kResults = {" OK ", " failed ", " done ", " verify failed "};
        auto result = SendResult::SendOK;
        const std::int32_t start = platform.clock.Ticks();
        link.SendData(text, paced, result);
        took = platform.clock.Ticks() - start;
        out += text + kResults.at(static_cast<std::size_t>(result));
    }

    ReportingPlatform platform;
    Wire wire;
    SerialControl comm{platform.ports, {}};
    BufferedPort port{platform.ports};  // for what the control does not have
    std::shared_ptr<frmMain> window =
        std::make_shared<frmMain>(platform.manager, platform.platform);
    FlashFlags flags;
    SerialLink link{*window, comm, flags, window->Settings(), platform.clock, platform.pump};
    std::string reply;  // to each line
    std::int32_t took = 0;
    std::string out;
};

const Verbs<Line> kVerbs = {
    {"port", [](Line& l, Argument name) { l.comm.name = name; }},
    {"settings", [](Line& l, Argument settings) { l.comm.settings = settings; }},
    {"open",
     [](Line& l, Argument) {
         l.comm.Open();
         l.out += l.comm.IsOpen() ? FormatLineSettings(l.wire.line) + " " : "not ";
     }},
    {"close", [](Line& l, Argument) { l.comm.Close(); }},
    {"is-open",  // the control, the port "COM3"
     [](Line& l, Argument) {
         l.out += Row(l.comm.IsOpen(), l.platform.ports.IsOpen("COM3")) + " ";
     }},
    {"held", [](Line& l, Argument port) { l.platform.ports.Hold(port, true); }},
    {"lost", [](Line& l, Argument) { l.wire.gone = true; }},
    {"driver-takes", [](Line& l, Argument n) { l.platform.ports.LimitWrites(std::stoul(n)); }},
    {"output", [](Line& l, Argument text) { l.comm.Output(text); }},
    {"counts",
     [](Line& l, Argument) {
         l.out += Row(l.comm.InBufferCount(), "");
         l.out += Row(l.comm.OutBufferCount(), "");
     }},
    {"received", [](Line& l, Argument) { l.out += std::exchange(l.wire.received, {}) + "| "; }},
    {"arrives", [](Line& l, Argument text) { l.wire.sent = text; }},
    {"arrive", [](Line& l, Argument n) { l.wire.sent = std::string(std::stoul(n), 'x'); }},
    {"input-size", [](Line& l, Argument) { l.out += Row(l.comm.Input().size(), ""); }},
    {"pump", [](Line& l, Argument) { l.platform.pump.PumpPending(); }},
    {"threshold", [](Line& l, Argument n) { l.comm.ReceiveThreshold(std::stoul(n)); }},
    {"input", [](Line& l, Argument) { l.out += l.comm.Input() + "| "; }},
    {"clear", [](Line& l, Argument) { l.comm.ClearInput(); }},
    {"why",  // the open failed
     [](Line& l, Argument) {
         const auto& error = l.comm.OpenError();
         l.out += error ? Row(static_cast<int>(error->Why()), error->Device(), "") : "no error ";
     }},
    // A line and its reply.
    {"replies", [](Line& l, Argument text) { l.reply = text; }},
    {"sends", [](Line& l, Argument text) { l.Send(text, false); }},
    {"paced", [](Line& l, Argument text) { l.Send(text, true); }},
    {"raw", [](Line& l, Argument text) { l.link.RawSend(text); }},
    {"clock",
     [](Line& l, Argument ms) {
         l.platform.clock.Set(static_cast<std::uint32_t>(std::stoul(ms)));
     }},
    {"took", [](Line& l, Argument) { l.out += Row(l.took, ""); }},
    // The port alone.
    {"port-open",  // with flow control 0, 1 or 2
     [](Line& l, Argument flow) {
         l.port.flowControl = static_cast<FlowControl>(std::stoi(flow));
         l.port.Open({});
         const LineSettings& line = l.wire.line;
         l.out += Row(FormatLineSettings(line), static_cast<int>(line.flowControl), "");
     }},
    {"port-close", [](Line& l, Argument) { l.port.Close(); }},
    {"port-is-open", [](Line& l, Argument) { l.out += Row(l.port.IsOpen(), ""); }},
    {"port-output", [](Line& l, Argument text) { l.port.Output(text); }},
    {"pending", [](Line& l, Argument) { l.out += Row(l.port.OutBufferCount(), ""); }},
    {"flush", [](Line& l, Argument) { l.out += Row(l.port.FlushPending(), ""); }},
    {"drop-lines", [](Line& l, Argument) { l.port.DropPendingLines(); }},
    {"drop", [](Line& l, Argument) { l.port.DropPending(); }},
    {"dtr", [](Line& l, Argument on) { l.port.Dtr(on == "on"); }},
    {"rts", [](Line& l, Argument on) { l.port.Rts(on == "on"); }},
    {"break", [](Line& l, Argument on) { l.port.Break(on == "on"); }},
    {"signals", [](Line& l, Argument) { l.out += std::exchange(l.wire.signals, {}) + "| "; }},
    {"modem",  // of the device: "cts" and "ri" are asserted
     [](Line& l, Argument lines) {
         l.wire.modem = ModemLines{.cts = lines.starts_with("cts"), .ri = lines.ends_with("ri")};
     }},
    {"lines",
     [](Line& l, Argument) {
         const auto lines = l.port.Lines();
         l.out += lines ? Row(lines->cts, lines->dsr, lines->dcd, lines->ri, "") : "none ";
     }},
    {"noise",
     [](Line& l, Argument) {
         l.wire.errors = {1, 2, 3};
     }},
    {"errors",
     [](Line& l, Argument) {
         const LineErrors errors = l.port.Errors();
         l.out += Row(errors.framing, errors.parity, errors.overrun, "");
     }},
};

TEST(Serial, TheControlAndItsPortDoWhatTheTableSays) {
    ExpectTable("serial", kVerbs);
}

TEST(Serial, EveryTextGoesOutWithOneReturnAndTheFirstKnownWordOfTheReplyWins) {
    ExpectTable("link", kVerbs);
}

}  // namespace
}  // namespace vantor
