// The virtual indicator at its serial line: the boot monitor with UART timing and fault injection.
// Has no clock: the caller passes the time, so it works on real terminals and in tests on virtual
// time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SerialPort.hpp"
#include "simulator/BootMonitor.hpp"
#include "simulator/Fault.hpp"
#include "simulator/FlashMemory.hpp"
#include "simulator/UartPacing.hpp"

namespace vantor {

struct IndicatorOptions {
    std::uint32_t bitsPerSecond = 38400;  ///< speed of the boot monitor after power-up
    bool paced = false;                   ///< bytes take UART time in both directions
    Micros think = 0;                     ///< delay before each acknowledgement
    Micros writeFlash = 1'000'000;        ///< from the end record's acknowledgement to the verdict
    std::vector<Fault> faults;
    std::optional<FlashMemory> expected;  ///< required for "DONE"; unset: any complete image
};

/// Used from one thread. A session begins with the first byte that is not part of a wake-up
/// (blank, CR) or arrives at a wrong speed. It ends with BOOT or when the host closes.
class VirtualIndicator {
public:
    explicit VirtualIndicator(IndicatorOptions options);
    VirtualIndicator(const VirtualIndicator&) = delete;
    VirtualIndicator& operator=(const VirtualIndicator&) = delete;

    /// The host has opened the port or changed its line parameters. Required before the first
    /// `Receive`. After BAUD only the speed may change: the monitor keeps its frame.
    void HostLine(const LineSettings& line, Micros now);
    /// The host has closed the port. Bytes transmitted until the next `HostLine` are lost.
    /// A close counts as a power cycle: the monitor restarts at its first speed and keeps its
    /// memory until the next SYSLOAD. After BAUD, when the host reopens at the new speed, this
    /// happens only if it has not reopened within 10 s. Paced bytes in transit arrive first, so
    /// that BOOT followed by an immediate close ends the session well.
    void HostClosed(Micros now);

    /// The host has sent `bytes`, at the speed of the last `HostLine`.
    void Receive(std::string_view bytes, Micros now);
    /// Returns the bytes transmitted by `now` and not yet returned.
    std::string Transmit(Micros now);
    /// When `Transmit` next has bytes or the state changes without input; none if never.
    /// May lie in the past.
    std::optional<Micros> NextDue() const;

    /// Injects a fault at run time. A line fault affects the next `times` lines, commands or
    /// image lines (`fault.line` is ignored); a stage fault applies from now on.
    void Arise(const Fault& fault);

    /// A "hangup" fault has closed the terminal; no more input or output.
    bool HungUp() const { return mHungUp; }
    /// The last session took a whole image, the verdict was "DONE", and BOOT came. Reset when the
    /// next session begins, like `SessionOver`.
    bool Booted() const { return mBooted; }
    /// A session has begun and ended, successfully or not.
    bool SessionOver() const { return mSessionOver; }
    /// Number of verdicts in all sessions.
    unsigned Verdicts() const { return mVerdicts; }
    const FlashMemory& Memory() const { return mMonitor.Memory(); }
    /// Protocol violations of the host in all sessions, one sentence each.
    const std::vector<std::string>& Violations() const { return mViolations; }

private:
    struct Incoming {
        Nanos at;
        char byte;
        std::uint32_t bitsPerSecond;
        bool closed;  // the host's close, queued behind its bytes
    };
    struct Outgoing {
        Nanos at;
        char byte;
    };
    struct Delivery {  // a reply in chunks of `piece` bytes, `gap` apart
        std::size_t piece = 1;
        Nanos gap = 0;
    };
    struct LineFaults;

    void Advance(Nanos now);
    void Hear(const Incoming& incoming);
    void TakeLine(const std::string& line, Nanos at);
    LineFaults FaultsOfImageLine(const std::string& line);
    LineFaults FaultsOfCommand(std::string_view command) const;
    void AddArisen(LineFaults& faults);
    const Fault* Find(FaultKind kind) const;
    Nanos Say(std::string_view text, Nanos ready, std::uint32_t speed, Delivery delivery);
    Nanos Say(const LineFaults& faults, std::string_view reply, Nanos ready, std::uint32_t speed);
    void GiveVerdict(Nanos at);
    void CloseArrived(Nanos at);
    void PowerCycle();
    void HangUp();
    void BeginSession();
    void EndSession(bool booted);
    void NoteWrongSpeed(std::uint32_t bitsPerSecond);
    std::uint32_t CharacterBits(std::uint32_t bitsPerSecond) const;
    std::string TakeDue(Nanos now);

    IndicatorOptions mOptions;  // the `times` of its line faults count down
    BootMonitor mMonitor;

    LineSettings mHostLine;
    bool mHostOpen = false;
    std::deque<Incoming> mIncoming;
    std::deque<Outgoing> mOutgoing;
    UartPacing mInPacing;
    UartPacing mOutPacing;
    std::optional<Nanos> mVerdictAt;
    std::optional<Nanos> mReopenBy;

    std::string mLine;                     // bytes since the last CR
    std::optional<std::string> mPrevious;  // the previous image line, as the host sent it
    std::size_t mLineNumber = 0;           // of `mPrevious`, among distinct lines
    std::vector<Fault> mArisen;            // line faults injected at run time

    bool mSessionBegun = false;
    bool mSessionOver = false;
    bool mBooted = false;
    bool mHungUp = false;
    unsigned mVerdicts = 0;
    bool mWrongSpeedNoted = false;
    bool mLineFeedNoted = false;
    std::vector<std::string> mViolations;
};

}  // namespace vantor
