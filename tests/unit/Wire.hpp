// The far end of a serial line that gives a test both directions as text.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/headless/HeadlessSerial.hpp"

namespace vantor {

class Wire : public FarEnd {
public:
    void Opened(const LineSettings& settings) override { line = settings; }
    void Closed() override {}
    void Receive(std::string_view bytes) override {
        received += bytes;
        if (onReceive) onReceive();
    }
    std::string Transmit() override { return std::exchange(sent, {}); }
    bool HungUp() const override { return gone; }
    void Break(bool on) override { Note("break", on); }
    void Dtr(bool asserted) override { Note("DTR", asserted); }
    void Rts(bool asserted) override { Note("RTS", asserted); }
    std::optional<ModemLines> Lines() const override { return modem; }
    LineErrors Errors() const override { return errors; }

    LineSettings line;
    std::string received;
    std::string sent;
    std::function<void()> onReceive;
    bool gone = false;
    std::string signals;              ///< changes by the host: "break on; DTR off; "
    std::optional<ModemLines> modem;  ///< what the host sees; empty when it has no modem lines
    LineErrors errors;

private:
    void Note(std::string_view signal, bool on) {
        signals.append(signal) += on ? " on; " : " off; ";
    }
};

}  // namespace vantor
