#include "controls/BufferedPort.hpp"

#include <array>
#include <span>
#include <utility>

#include "support/Conversions.hpp"
#include "support/LineSettings.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

/// The settings may hold only the port number.
std::string BufferedPort::SystemName() const {
    return IsNumeric(name) ? "COM" + std::to_string(ToInt16(name)) : name;
}

void BufferedPort::Open(std::function<void()> notify) {
    Close();
    mOpenError.reset();
    // A port that cannot be opened stays closed; callers check IsOpen and report it.
    try {
        LineSettings line = ParseLineSettings(settings);
        line.flowControl = flowControl;
        mPort = mPorts.Open(SystemName(), line);
        Notify(std::move(notify));
    } catch (const PortOpenError& error) {
        mOpenError = error;
    } catch (const RuntimeError& error) {
        if (error.Is(ErrorNumber::InvalidPropertyValue))
            mOpenError.emplace(PortOpenError::Reason::LineRefused, name);
    }
}

void BufferedPort::Close() {
    mPending.clear();
    mPort.reset();
}

template <typename Operation>
void BufferedPort::OnPort(Operation&& operation) {
    if (!mPort) return;
    try {
        operation(*mPort);
    } catch (const RuntimeError&) {
        // The device is lost: from now on polls find nothing and sends have no effect.
        Close();
        if (onLost) onLost();
    }
}

void BufferedPort::Notify(std::function<void()> notify) {
    OnPort([&notify](SerialPort& port) { port.NotifyOnInput(std::move(notify)); });
}

void BufferedPort::Output(std::string_view bytes) {
    if (!mPort) return;
    mPending.append(bytes);
    FlushPending();
}

bool BufferedPort::FlushPending() {
    if (!mPending.empty())
        OnPort([this](SerialPort& port) { mPending.erase(0, port.Write(mPending)); });
    return mPending.empty();
}

void BufferedPort::DropPendingLines() {
    const std::size_t end = mPending.find_first_of("\r\n");
    if (end != std::string::npos) mPending.resize(end + 1);
}

std::size_t BufferedPort::OutBufferCount() {
    FlushPending();
    std::size_t count = mPending.size();
    OnPort([&count](SerialPort& port) { count += port.OutputCount(); });
    return mPort ? count : 0;
}

std::size_t BufferedPort::InBufferCount() {
    FlushPending();
    std::size_t count = 0;
    OnPort([&count](SerialPort& port) { count = port.InputCount(); });
    return count;
}

std::string BufferedPort::Input(std::size_t most) {
    std::string all;
    OnPort([&all, most](SerialPort& port) {
        std::array<char, 4096> chunk;
        std::size_t count = 0;
        do {
            count = port.Read(std::span<char>(chunk));
            all.append(chunk.data(), count);
        } while (count == chunk.size() && all.size() < most);
    });
    return all;
}

void BufferedPort::ClearInput() {
    OnPort([](SerialPort& port) { port.DiscardInput(); });
}

void BufferedPort::Break(bool on) {
    OnPort([on](SerialPort& port) { port.Break(on); });
}

void BufferedPort::Dtr(bool asserted) {
    OnPort([asserted](SerialPort& port) { port.Dtr(asserted); });
}

void BufferedPort::Rts(bool asserted) {
    OnPort([asserted](SerialPort& port) { port.Rts(asserted); });
}

std::optional<ModemLines> BufferedPort::Lines() {
    std::optional<ModemLines> lines;
    OnPort([&lines](SerialPort& port) { lines = port.Lines(); });
    return lines;
}

LineErrors BufferedPort::Errors() {
    LineErrors errors;
    OnPort([&errors](SerialPort& port) { errors = port.Errors(); });
    return errors;
}

}  // namespace vantor
