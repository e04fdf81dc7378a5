#include "terminal/session/TerminalSession.hpp"

#include <utility>

#include "platform/Clock.hpp"
#include "platform/StringTable.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

// With continuous input, control returns to the message loop after this many bytes.
constexpr std::size_t kMostAtOnce = 65'536;
constexpr auto kAll = static_cast<std::size_t>(-1);
constexpr std::uint32_t kSendIntervalMs = 10;
constexpr std::uint32_t kDrainMs = 2000;
constexpr std::uint32_t kDrainStepMs = 5;
constexpr std::uint32_t kReopenIntervalMs = 1000;

}  // namespace

TerminalSession::TerminalSession(SessionOwner& owner, Platform& platform)
    : mOwner(owner),
      mPlatform(platform),
      mPort(platform.ports),
      mQueue(mPort, platform.clock, [this](std::string_view bytes) { mOwner.Sent(bytes); }),
      mBreak(mPort, platform.clock),
      mSendTimer(platform.pump, kSendIntervalMs, [this] { KeepSending(); }),
      mReopenTimer(platform.pump, kReopenIntervalMs, [this] { TryReopen(); }) {
    mPort.onLost = [this] { Lost(); };
}

void TerminalSession::Options(const TerminalOptions& options) {
    mReopens = options.reopens;
    if (!mReopens) mReopenTimer.Enabled(false);
    mCaptureStamps = options.captureTimeStamps ? options.timeStamps : TimeStamps::Off;
    if (options.captureTimeStamps && options.timeStamps == TimeStamps::Off)
        mCaptureStamps = TimeStamps::TimeOfDay;
}

// --- the port --------------------------------------------------------------------------------

void TerminalSession::Open() {
    mPort.InBufferCount();  // closes the port if its device is lost
    if (!PortOpen()) Connect();
}

void TerminalSession::Connect() {
    mPort.Open([this] { TakeInput(kMostAtOnce); });
    mConnected = PortOpen();
    mDriverSetsRts = mPort.flowControl == FlowControl::Hardware;
    mDtr = true;
    mRts = true;
    if (mConnected) mReopenTimer.Enabled(false);
}

void TerminalSession::Close() {
    const std::shared_ptr<void> keepAlive = mOwner.KeepAlive();
    TakeInput(kAll);
    EndSending();
    mPort.Close();
    mConnected = false;
    mReopenTimer.Enabled(false);
}

void TerminalSession::Lost() {
    EndSending();
    mLost = std::exchange(mConnected, false);
    if (!mReading) TellLoss();
}

void TerminalSession::TellLoss() {
    if (!std::exchange(mLost, false)) return;
    Tell(Str::PortWasLost);
    mLostName = mPort.name;
    // Without a timer the port stays closed.
    if (mReopens) Ignoring([this] { mReopenTimer.Enabled(true); });
}

void TerminalSession::TryReopen() {
    if (PortOpen() || mPort.name != mLostName) return mReopenTimer.Enabled(false);
    Connect();
    if (!PortOpen()) return;
    Tell(Str::PortIsOpenAgain);
    mOwner.PortReopened();
}

void TerminalSession::Tell(Str text) {
    std::string told = mPlatform.strings.Text(text);
    mOwner.Notice(told.replace(told.find("%1"), 2, mPort.SystemName()));
}

void TerminalSession::Dtr(bool asserted) {
    mPort.Dtr(asserted);
    mDtr = asserted || !PortOpen();
}

void TerminalSession::Rts(bool asserted) {
    if (mDriverSetsRts) return;
    mPort.Rts(asserted);
    mRts = asserted || !PortOpen();
}

// --- received --------------------------------------------------------------------------------

void TerminalSession::TakeInput(std::size_t most) {
    // The window can be closed while the box that reports a failed capture is open.
    const std::shared_ptr<void> keepAlive = mOwner.KeepAlive();
    mReading = true;
    const std::string bytes = mPort.Input(most);
    mReading = false;
    if (!bytes.empty()) {
        const std::int64_t timeMs = mPlatform.clock.LocalMilliseconds();
        mOwner.Received(bytes, timeMs);
        Capture(bytes, timeMs);
    }
    TellLoss();
}

void TerminalSession::Capture(std::string_view bytes, std::int64_t timeMs) {
    if (!mCapture.file) return;
    Trapped("TerminalSession.Capture", [&] {
        // Moved out during the write: a failed write must end the capture before the error box
        // opens, because more text arrives while that box is open.
        CaptureTarget target = std::exchange(mCapture, {});
        target.file->Write(mStamper.Stamped(mCaptureStamps, bytes, timeMs));
        mCapture = std::move(target);
    });
}

void TerminalSession::CaptureFile(const std::string& path) {
    const std::shared_ptr<void> keepAlive = mOwner.KeepAlive();
    TakeInput(kAll);
    // An open capture file must be closed before it can be created again.
    if (path.empty() || path == mCapture.path) mCapture = {};
    if (path.empty()) return;
    mCapture = {path, mPlatform.files.Create(path)};
    mStamper.Restart();
}

// --- sent ------------------------------------------------------------------------------------

void TerminalSession::Send(std::string_view bytes) {
    if (!PortOpen()) return;
    mQueue.Add(std::string(bytes));
    KeepSending();
}

void TerminalSession::SendPaced(std::string_view text, std::string_view lineEnd) {
    if (!PortOpen()) return;
    mQueue.AddLines(text, lineEnd);
    KeepSending();
}

void TerminalSession::Reply(std::string bytes) {
    if (!PortOpen()) return;
    mQueue.AddReply(std::move(bytes));
    Ignoring([this] { KeepSending(); });
}

void TerminalSession::AbortPaste() {
    mQueue.DropLines();
    KeepSending();
}

bool TerminalSession::FlushPending() {
    KeepSending();
    return !mSendTimer.Enabled();
}

void TerminalSession::DropPendingLines() {
    mQueue.Clear();
    mPort.DropPendingLines();
}

void TerminalSession::DrainOutput() {
    Clock& clock = mPlatform.clock;
    const std::uint32_t start = clock.Milliseconds();
    while (!FlushPending() || mPort.OutBufferCount() > 0) {
        if (clock.Milliseconds() - start >= kDrainMs) return;
        clock.Sleep(kDrainStepMs);
    }
}

void TerminalSession::SendBreak() {
    if (!PortOpen()) return;
    mSendTimer.Enabled(true);  // without a timer the break would not end
    mBreak.Start();
    KeepSending();
}

void TerminalSession::EndSending() {
    mBreak.Stop();
    mQueue.Clear();
    mSendTimer.Enabled(false);
}

/// Sends the remainder in parts when the driver does not accept everything at once, and what has to
/// wait for its time.
void TerminalSession::KeepSending() {
    mBreak.Advance();
    const bool idle = !mBreak.Active() && mQueue.Flush();
    mSendTimer.Enabled(!idle && PortOpen());
}

}  // namespace vantor
