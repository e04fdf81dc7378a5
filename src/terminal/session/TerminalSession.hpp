// The terminal's connection: its port, its capture file, and the queue of everything that is sent.
// It knows no screen: its owner shows what arrives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "controls/BufferedPort.hpp"
#include "platform/Files.hpp"
#include "platform/Platform.hpp"
#include "resources/texts/Str.hpp"
#include "support/Timer.hpp"
#include "terminal/options/TerminalOptions.hpp"
#include "terminal/session/LineBreak.hpp"
#include "terminal/session/LineStamper.hpp"
#include "terminal/session/SendQueue.hpp"

namespace vantor {

/// What a session needs from the object that owns it.
class SessionOwner {
public:
    virtual ~SessionOwner() = default;
    /// Shows bytes that arrived at `timeMs` (Clock::LocalMilliseconds), before they are captured.
    /// Not called re-entrantly.
    virtual void Received(std::string_view bytes, std::int64_t timeMs) = 0;
    /// The port has taken bytes that the user sent; not called for replies.
    virtual void Sent(std::string_view bytes) = 0;
    /// Shows a notice about the connection, UTF-8.
    virtual void Notice(const std::string& text) = 0;
    /// The lost port is open again, and the notice of that has been shown.
    virtual void PortReopened() = 0;
    /// Keeps the session alive while one of its functions runs: a box can close its window.
    virtual std::shared_ptr<void> KeepAlive() const = 0;
};

/// Bytes in both directions pass unchanged. Line errors are not raised: a failed open shows only in
/// `PortOpen`, a lost device also in a notice. No timer runs while idle.
class TerminalSession {
public:
    /// `owner` and `platform` outlive the session.
    TerminalSession(SessionOwner& owner, Platform& platform);
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    /// Applies the flow control (at the next open), the reopening of a lost port, and the time
    /// stamps of captures.
    void Options(const TerminalOptions& options);

    BufferedPort& Port() { return mPort; }
    bool PortOpen() const { return mPort.IsOpen(); }
    /// Does nothing on an open port.
    void Open();
    /// Shows and captures the input received so far first. Nothing queued is sent any more, and a
    /// lost port is no longer waited for.
    void Close();

    /// The capture file for received data; empty when none. Setting a name starts a capture and
    /// overwrites the file; an empty name ends the capture. Input received so far goes to the
    /// running capture, which continues if another file cannot be created.
    /// Raises what Files::Create does.
    const std::string& CaptureFile() const { return mCapture.path; }
    void CaptureFile(const std::string& path);

    // --- sending: in the order of the calls; no effect on a closed port -----------------------

    void Send(std::string_view bytes);
    /// Sends `text` a line every 50 ms, each ended by `lineEnd`, which is not empty.
    void SendPaced(std::string_view text, std::string_view lineEnd);
    /// Sends an answer to a query of the far end. Does not raise.
    void Reply(std::string bytes);

    /// Paced lines wait to be sent.
    bool Pasting() const { return mQueue.Pacing(); }
    /// Drops the paced lines that wait; what was sent after them follows now.
    void AbortPaste();
    /// True when the driver has accepted everything.
    bool FlushPending();
    /// Discards what the driver has not accepted, except the rest of a partly sent line.
    void DropPendingLines();
    /// Waits at most 2 seconds until all queued output is on the line. Does not pump messages.
    void DrainOutput();

    /// Sends a break of 250 ms; what is sent meanwhile follows it. See LineBreak.
    void SendBreak();

    // --- modem lines: asserted after each open ------------------------------------------------

    void Dtr(bool asserted);
    /// No effect with hardware flow control.
    void Rts(bool asserted);
    /// As set last.
    bool Dtr() const { return mDtr; }
    bool Rts() const { return mRts; }
    /// Empty on a closed port and when the device has no modem lines.
    std::optional<ModemLines> Lines() { return mPort.Lines(); }
    /// Since the port was opened.
    LineErrors Errors() { return mPort.Errors(); }

private:
    struct CaptureTarget {
        std::string path;  // empty when there is no capture
        std::unique_ptr<OutputFile> file;
    };

    void Connect();
    void Lost();
    void TellLoss();
    void TryReopen();
    void Tell(Str text);
    void EndSending();
    void TakeInput(std::size_t most);
    void Capture(std::string_view bytes, std::int64_t timeMs);
    void KeepSending();

    SessionOwner& mOwner;
    Platform& mPlatform;
    BufferedPort mPort;
    SendQueue mQueue;
    LineBreak mBreak;
    CaptureTarget mCapture;
    LineStamper mStamper;
    TimeStamps mCaptureStamps = TimeStamps::Off;
    Timer mSendTimer;
    Timer mReopenTimer;
    std::string mLostName;  // of the port that is waited for
    bool mReopens = false;
    bool mConnected = false;  // the port is open, or its loss has not been noticed
    bool mReading = false;    // a loss is told after the bytes that were read before
    bool mLost = false;       // not told yet
    bool mDtr = true;
    bool mRts = true;
    bool mDriverSetsRts = false;
};

}  // namespace vantor
