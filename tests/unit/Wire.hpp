// The far end of a serial line that gives a test both directions as text.
#pragma once

#include <functional>
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

    LineSettings line;
    std::string received;
    std::string sent;
    std::function<void()> onReceive;
    bool gone = false;
};

}  // namespace vantor
