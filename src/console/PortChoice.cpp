#include "console/PortChoice.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "console/Options.hpp"
#include "platform/StringTable.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

using Row = std::array<std::string, 6>;

std::string Shown(const std::string& text) {
    return text.empty() ? "-" : text;
}

std::vector<Row> Rows(const std::vector<SerialPortInfo>& ports, const StringTable& strings) {
    std::vector<Row> rows = {{strings.Text(Str::ColumnPort), strings.Text(Str::ColumnDevice),
                              strings.Text(Str::ColumnUsb), strings.Text(Str::ColumnSerial),
                              strings.Text(Str::ColumnLatency),
                              strings.Text(Str::ColumnDescription)}};
    for (const SerialPortInfo& port : ports)
        rows.push_back({port.name, port.device, Shown(port.usbId), Shown(port.serialNumber),
                        port.latencyMs ? std::to_string(*port.latencyMs) + " ms" : "-",
                        Shown(port.description)});
    return rows;
}

bool IsCalled(const SerialPortInfo& port, const std::string& given) {
    return SameText(port.name, given) || port.device == given ||
           (!port.serialNumber.empty() && SameText(port.serialNumber, given)) ||
           std::ranges::find(port.otherNames, given) != port.otherNames.end();
}

/// "COM9 (A12345), COM10"
std::string Names(const std::vector<SerialPortInfo>& ports, const StringTable& strings) {
    std::string names;
    for (const SerialPortInfo& port : ports) {
        names += (names.empty() ? "" : ", ") + port.name;
        // A serial number is no help where several ports have it.
        const std::string& more =
            port.otherNames.empty() ? port.serialNumber : port.otherNames.front();
        if (!more.empty()) names += " (" + more + ")";
    }
    return names.empty() ? strings.Text(Str::NoPorts) : names;
}

}  // namespace

bool IsComName(const std::string& given) {
    return given.size() > 3 && SameText(given.substr(0, 3), "COM") &&
           given.find_first_not_of("0123456789", 3) == std::string::npos;
}

std::string PortTable(const std::vector<SerialPortInfo>& ports, const StringTable& strings) {
    if (ports.empty()) return strings.Text(Str::NoPortFound) + "\n";
    const std::vector<Row> rows = Rows(ports, strings);
    Row::size_type last = rows.front().size() - 1;
    std::string text;
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < last; ++column) {
            std::size_t width = 0;
            for (const Row& other : rows) width = std::max(width, CharacterCount(other[column]));
            text += FixedWidth(row[column], width + 2);
        }
        text += row[last] + "\n";
    }
    return text;
}

void WritePorts(const JsonEvents& events, const std::vector<SerialPortInfo>& ports) {
    for (const SerialPortInfo& port : ports) {
        const auto latency =
            port.latencyMs ? std::optional<std::int64_t>(*port.latencyMs) : std::nullopt;
        JsonObject object = events.Begin("port");
        object.Text("name", port.name).TextOrNull("device", port.device);
        object.TextOrNull("usb_id", port.usbId).TextOrNull("serial_number", port.serialNumber);
        object.TextOrNull("by_id", port.otherNames.empty() ? "" : port.otherNames.front());
        object.NumberOrNull("latency_ms", latency);
        events.Write(object.TextOrNull("description", port.description));
    }
}

std::optional<std::string> ChosenPort(const std::vector<SerialPortInfo>& ports,
                                      const std::string& given, const StringTable& strings) {
    if (IsComName(given) || given.find_first_of("/\\") != std::string::npos) return given;
    std::vector<SerialPortInfo> called;
    for (const SerialPortInfo& port : ports)
        if (IsCalled(port, given)) called.push_back(port);
    if (called.empty()) return std::nullopt;
    if (called.size() > 1)
        throw Refusal(strings, Str::PortAmbiguous, given, Names(called, strings));
    return called.front().name;
}

RuntimeError UnknownPort(const std::vector<SerialPortInfo>& ports, const std::string& given,
                         const StringTable& strings) {
    return Refusal(strings, Str::PortUnknown, given, Names(ports, strings));
}

}  // namespace vantor
