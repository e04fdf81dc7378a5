// The state of one of several ports, as its process tells it in JSON.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "console/ExitStatus.hpp"
#include "platform/ChildProcesses.hpp"

namespace vantor {

class StringTable;

class PortRow {
public:
    /// `process` is null when it could not be started.
    PortRow(std::string port, std::unique_ptr<ChildProcess> process, const StringTable& strings);

    const std::string& Port() const { return mPort; }
    /// Reads what the process has written. The complete lines are returned, and shown in the row.
    std::string Read(std::uint32_t nowMs);
    void Interrupt();
    /// Ends the wait of the process for an update; one that has begun goes on.
    void EndWait();
    bool Ended() const { return mEnded; }
    ExitStatus Status() const { return mStatus; }
    /// True when the process has ended without saying so.
    bool Lost() const { return mLost; }

    /// Lines of the image are being sent.
    bool Streaming() const { return mStreaming; }
    int Percent() const { return mPercent; }
    /// The row of a terminal of `columns`, with `nameWidth` for the port.
    std::string Row(std::size_t nameWidth, std::uint32_t nowMs) const;
    /// What the row says behind the bar.
    const std::string& State() const { return mState; }
    /// Messages since the last call that must be read, each with the name of the port.
    std::string TakeMessages();

private:
    void Take(std::map<std::string, std::string>& event, std::uint32_t nowMs);
    void TakeEnd(std::map<std::string, std::string>& event);
    void Close();
    std::string TimeLeft(std::uint32_t nowMs) const;

    std::string mPort;
    std::unique_ptr<ChildProcess> mProcess;
    const StringTable& mStrings;
    std::string mUnread;  // a line that is not complete
    std::string mState;
    std::string mMessages;
    int mPercent = 0;
    std::uint32_t mImageStart = 0;
    bool mStreaming = false;
    bool mWaiting = false;
    bool mTold = false;  // the process has told its end
    bool mEnded = false;
    bool mLost = false;
    ExitStatus mStatus = ExitStatus::UpdateFailure;
};

}  // namespace vantor
