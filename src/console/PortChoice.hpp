// The serial ports as people recognise them: listed with their adapters, and chosen by name,
// device, or serial number.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/JsonView.hpp"
#include "platform/SerialPort.hpp"

namespace vantor {

class StringTable;

/// True for "COM9" in capitals or not.
bool IsComName(const std::string& given);

/// The ports as a table with a line of headings; a sentence when there is none.
std::string PortTable(const std::vector<SerialPortInfo>& ports, const StringTable& strings);

/// One object "port" for each.
void WritePorts(const JsonEvents& events, const std::vector<SerialPortInfo>& ports);

/// What `given` means: a COM name or a path as it is, else the COM name of the only one of `ports`
/// with that device, serial number or name in /dev/serial/by-id. Nothing when there is none.
/// Raises RuntimeError 5 with a sentence when there are several.
std::optional<std::string> ChosenPort(const std::vector<SerialPortInfo>& ports,
                                      const std::string& given, const StringTable& strings);

/// The error for a port that is not there; it names those that are.
RuntimeError UnknownPort(const std::vector<SerialPortInfo>& ports, const std::string& given,
                         const StringTable& strings);

}  // namespace vantor
