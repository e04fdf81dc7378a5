// The transcript of a serial line: what went over it, when, and in which direction.
#pragma once

#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/SerialPort.hpp"

namespace vantor {

/// `bytes` for reading: printable ASCII as it is, the rest as \r, \n, \t, \\ or \xHH.
std::string Escaped(std::string_view bytes);

/// A file with a line for each transfer: milliseconds since it was opened, direction ("->" to
/// the indicator), escaped bytes.
class Transcript {
public:
    /// Raises RuntimeError 75 when `path` (UTF-8) cannot be written.
    Transcript(const std::string& path, const Clock& clock);

    void Note(std::string_view mark, std::string_view text);

private:
    std::ofstream mFile;
    const Clock& mClock;
    std::uint32_t mStart;
};

/// Serial ports that forward to others and note every transfer.
class LoggedSerialPorts : public SerialPorts {
public:
    /// Both outlive the ports.
    LoggedSerialPorts(SerialPorts& inner, Transcript& transcript)
        : mInner(inner), mTranscript(transcript) {}

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override;
    std::vector<SerialPortInfo> List() const override { return mInner.List(); }

private:
    SerialPorts& mInner;
    Transcript& mTranscript;
};

}  // namespace vantor
