#include "terminal/TerminalSession.hpp"

#include <utility>

#include "platform/Clock.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

// With continuous input, control returns to the message loop after this many bytes.
constexpr std::size_t kMostAtOnce = 65'536;
constexpr auto kAll = static_cast<std::size_t>(-1);
constexpr std::uint32_t kSendIntervalMs = 10;
constexpr std::uint32_t kDrainMs = 2000;
constexpr std::uint32_t kDrainStepMs = 5;

}  // namespace

TerminalSession::TerminalSession(SessionOwner& owner, Platform& platform)
    : mOwner(owner),
      mPlatform(platform),
      mPort(platform.ports),
      mSendTimer(platform.pump, kSendIntervalMs, [this] { KeepSending(); }) {}

void TerminalSession::Open() {
    mPort.InBufferCount();  // closes the port if its device is lost
    if (PortOpen()) return;
    mPort.Open([this] { TakeInput(kMostAtOnce); });
}

void TerminalSession::Close() {
    const std::shared_ptr<void> keepAlive = mOwner.KeepAlive();
    TakeInput(kAll);
    mPort.Close();
}

void TerminalSession::DrainOutput() {
    Clock& clock = mPlatform.clock;
    const std::uint32_t start = clock.Milliseconds();
    while (mPort.OutBufferCount() > 0 && clock.Milliseconds() - start < kDrainMs)
        clock.Sleep(kDrainStepMs);
}

void TerminalSession::TakeInput(std::size_t most) {
    // The window can be closed while the box that reports a failed capture is open.
    const std::shared_ptr<void> keepAlive = mOwner.KeepAlive();
    const std::string bytes = mPort.Input(most);
    if (bytes.empty()) return;  // the device is lost, or no input
    mOwner.Received(bytes);
    Capture(bytes);
}

void TerminalSession::Capture(std::string_view bytes) {
    if (!mCapture.file) return;
    Trapped("TerminalSession.Capture", [&] {
        // Moved out during the write: a failed write must end the capture before the error box
        // opens, because more text arrives while that box is open.
        CaptureTarget target = std::exchange(mCapture, {});
        target.file->Write(bytes);
        mCapture = std::move(target);
    });
}

void TerminalSession::CaptureFile(const std::string& path) {
    const std::shared_ptr<void> keepAlive = mOwner.KeepAlive();
    TakeInput(kAll);
    // An open capture file must be closed before it can be created again.
    if (path.empty() || path == mCapture.path) mCapture = {};
    if (!path.empty()) mCapture = {path, mPlatform.files.Create(path)};
}

void TerminalSession::Send(std::string_view bytes) {
    if (!PortOpen()) return;
    mPort.Output(bytes);
    KeepSending();
}

/// Sends the remainder in parts when the driver does not accept everything at once.
/// No timer runs while idle.
void TerminalSession::KeepSending() {
    mSendTimer.Enabled(!mPort.FlushPending());
}

}  // namespace vantor
