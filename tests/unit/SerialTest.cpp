// The serial control, and the exchange of a line for its reply. The scripts of tests/terminal have
// the rest of the port below the control.
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
    {"is-open", [](Line& l, Argument) { l.out += Row(l.comm.IsOpen(), ""); }},
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
};

TEST(Serial, TheControlDoesWhatTheTableSays) {
    ExpectTable("serial", kVerbs);
}

TEST(Serial, EveryTextGoesOutWithOneReturnAndTheFirstKnownWordOfTheReplyWins) {
    ExpectTable("link", kVerbs);
}

}  // namespace
}  // namespace vantor
