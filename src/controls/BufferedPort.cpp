#include "controls/BufferedPort.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <utility>

#include "support/Conversions.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

std::array<std::string_view, 4> SplitFields(std::string_view settings) {
    std::array<std::string_view, 4> fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::size_t comma = settings.find(',');
        if ((comma == std::string_view::npos) != (i + 1 == fields.size()))
            throw RuntimeError(ErrorNumber::InvalidPropertyValue);
        fields[i] = settings.substr(0, comma);
        settings.remove_prefix(std::min(settings.size(), fields[i].size() + 1));
    }
    return fields;
}

std::uint32_t WholeNumber(std::string_view digits) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc{} || end != digits.data() + digits.size())
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    return number;
}

Parity ParityOf(std::string_view letter) {
    if (letter == "N" || letter == "n") return Parity::None;
    if (letter == "O" || letter == "o") return Parity::Odd;
    if (letter == "E" || letter == "e") return Parity::Even;
    throw RuntimeError(ErrorNumber::InvalidPropertyValue);
}

std::uint8_t OneOf(std::string_view digits, std::uint32_t low, std::uint32_t high) {
    const std::uint32_t number = WholeNumber(digits);
    if (number != low && number != high) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    return static_cast<std::uint8_t>(number);
}

/// The settings may hold only the port number.
std::string PortName(const std::string& port) {
    return IsNumeric(port) ? "COM" + std::to_string(ToInt16(port)) : port;
}

}  // namespace

LineSettings ParseLineSettings(std::string_view settings) {
    const auto [speed, parity, dataBits, stopBits] = SplitFields(settings);
    return {.bitsPerSecond = WholeNumber(speed),
            .parity = ParityOf(parity),
            .dataBits = OneOf(dataBits, 7, 8),
            .stopBits = OneOf(stopBits, 1, 2)};
}

void BufferedPort::Open(std::function<void()> notify) {
    Close();
    mOpenError.reset();
    // A port that cannot be opened stays closed; callers check IsOpen and report it.
    try {
        mPort = mPorts.Open(PortName(name), ParseLineSettings(settings));
    } catch (const PortOpenError& error) {
        mOpenError = error;
        return;
    } catch (const RuntimeError& error) {
        if (error.Is(ErrorNumber::InvalidPropertyValue))
            mOpenError.emplace(PortOpenError::Reason::LineRefused, name);
        return;
    }
    Notify(std::move(notify));
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

}  // namespace vantor
