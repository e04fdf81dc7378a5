#include "console/Transcript.hpp"

#include <array>
#include <cstdio>
#include <filesystem>
#include <span>
#include <utility>

#include "support/RuntimeError.hpp"

namespace vantor {
namespace {

class LoggedPort : public SerialPort {
public:
    LoggedPort(std::unique_ptr<SerialPort> inner, Transcript& transcript)
        : mInner(std::move(inner)), mTranscript(transcript) {}
    ~LoggedPort() override { mTranscript.Note("--", "closed"); }
    LoggedPort(const LoggedPort&) = delete;
    LoggedPort& operator=(const LoggedPort&) = delete;

    std::size_t Read(std::span<char> into) override {
        const std::size_t count = mInner->Read(into);
        if (count > 0) mTranscript.Note("<-", Escaped({into.data(), count}));
        return count;
    }
    std::size_t Write(std::string_view bytes) override {
        const std::size_t count = mInner->Write(bytes);
        if (count > 0) mTranscript.Note("->", Escaped(bytes.substr(0, count)));
        return count;
    }
    std::size_t InputCount() override { return mInner->InputCount(); }
    std::size_t OutputCount() override { return mInner->OutputCount(); }
    void DiscardInput() override {
        // Read instead, so that the transcript has what the program never looks at.
        std::array<char, 256> chunk;
        while (Read(chunk) > 0) continue;
    }
    void NotifyOnInput(std::function<void()> notify) override {
        mInner->NotifyOnInput(std::move(notify));
    }

private:
    std::unique_ptr<SerialPort> mInner;
    Transcript& mTranscript;
};

std::string Describe(const LineSettings& line) {
    constexpr std::array<char, 3> kLetters = {'N', 'O', 'E'};
    return std::to_string(line.bitsPerSecond) + "," +
           kLetters[static_cast<std::size_t>(line.parity)] + "," + std::to_string(line.dataBits) +
           "," + std::to_string(line.stopBits);
}

}  // namespace

std::string Escaped(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\r') {
            text += "\\r";
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\t') {
            text += "\\t";
        } else if (c == '\\') {
            text += "\\\\";
        } else if (byte >= 0x20 && byte < 0x7f) {
            text += c;
        } else {
            constexpr std::string_view kDigits = "0123456789ABCDEF";
            text.append("\\x").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0x0fu]);
        }
    }
    return text;
}

Transcript::Transcript(const std::string& path, const Clock& clock)
    : mFile(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary),
      mClock(clock),
      mStart(clock.Milliseconds()) {
    if (!mFile) throw RuntimeError(ErrorNumber::PathFileAccess);
}

void Transcript::Note(std::string_view mark, std::string_view text) {
    std::array<char, 16> time{};
    const int length = std::snprintf(time.data(), time.size(), "%8lu",
                                     static_cast<unsigned long>(mClock.Milliseconds() - mStart));
    mFile.write(time.data(), length);
    // Flushed line by line: a transcript matters most when the program did not end well.
    mFile << ' ' << mark << ' ' << text << std::endl;
}

std::unique_ptr<SerialPort> LoggedSerialPorts::Open(const std::string& name,
                                                    const LineSettings& line) {
    const std::string what = name + " " + Describe(line);
    try {
        auto port = mInner.Open(name, line);
        mTranscript.Note("--", "opened " + what);
        return std::make_unique<LoggedPort>(std::move(port), mTranscript);
    } catch (const RuntimeError& error) {
        mTranscript.Note("--", "cannot open " + what + ": " + error.Description());
        throw;
    }
}

}  // namespace vantor
