// The terminal's connection: its port, its capture file, and the queue of everything that is sent.
// It knows no screen: its owner shows what arrives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "controls/BufferedPort.hpp"
#include "platform/Files.hpp"
#include "platform/Platform.hpp"
#include "support/Timer.hpp"

namespace vantor {

/// What a session needs from the object that owns it.
class SessionOwner {
public:
    virtual ~SessionOwner() = default;
    /// Shows bytes that have arrived, before they are captured. Not called re-entrantly.
    virtual void Received(std::string_view bytes) = 0;
    /// Keeps the session alive while one of its functions runs: a box can close its window.
    virtual std::shared_ptr<void> KeepAlive() const = 0;
};

/// Bytes in both directions pass unchanged. Line errors are not raised: a failed open or a lost
/// device shows only in `PortOpen`.
class TerminalSession {
public:
    /// `owner` and `platform` outlive the session.
    TerminalSession(SessionOwner& owner, Platform& platform);

    BufferedPort& Port() { return mPort; }
    bool PortOpen() const { return mPort.IsOpen(); }
    /// Does nothing on an open port.
    void Open();
    /// Shows and captures the input received so far first.
    void Close();

    /// Waits at most 2 seconds until all queued output is on the line. Does not pump messages.
    void DrainOutput();

    /// The capture file for received data; empty when none. Setting a name starts a capture and
    /// overwrites the file; an empty name ends the capture. Input received so far goes to the
    /// running capture, which continues if another file cannot be created.
    /// Raises what Files::Create does.
    const std::string& CaptureFile() const { return mCapture.path; }
    void CaptureFile(const std::string& path);

    /// Queues `bytes` behind what is still to be sent. Does nothing on a closed port.
    void Send(std::string_view bytes);

private:
    struct CaptureTarget {
        std::string path;  // empty when there is no capture
        std::unique_ptr<OutputFile> file;
    };

    void TakeInput(std::size_t most);
    void Capture(std::string_view bytes);
    void KeepSending();

    SessionOwner& mOwner;
    Platform& mPlatform;
    BufferedPort mPort;
    CaptureTarget mCapture;
    Timer mSendTimer;
};

}  // namespace vantor
