// The virtual indicator as seen from its serial line: the boot monitor's answers in time, as a
// UART would pace them, with faults on request. Knows no clock of its own: the caller says what
// time it is, so that it serves real terminals and tests on virtual time alike.
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
    bool paced = false;                   ///< both directions take the time of a UART
    Micros think = 0;                     ///< before each acknowledgement
    Micros writeFlash = 1'000'000;        ///< between the end's acknowledgement and the verdict
    std::vector<Fault> faults;
    std::optional<FlashMemory> expected;  ///< what "DONE" requires; unset: any complete image
};

/// Used from one thread. A session begins with the first byte of the host that is not part of a
/// wake-up (blank, CR) or comes at a wrong speed; it ends with BOOT or when the host closes.
class VirtualIndicator {
public:
    explicit VirtualIndicator(IndicatorOptions options);
    VirtualIndicator(const VirtualIndicator&) = delete;
    VirtualIndicator& operator=(const VirtualIndicator&) = delete;

    /// The host has opened its end, or uses other line parameters from now on. Must come before
    /// the first `Receive`.
    void HostLine(const LineSettings& line, Micros now);
    /// The host has closed its end; what the indicator says until the next `HostLine` is lost.
    /// This stands for a power cycle: the monitor starts anew at its first speed, its memory
    /// kept until the next SYSLOAD. Not after BAUD, where the host reopens at the new speed:
    /// there only when it has not reopened within 10 s. Paced bytes still on their way in arrive
    /// first, so that BOOT and an immediate close is a good end.
    void HostClosed(Micros now);

    /// Bytes that the host has put on the line, at the speed that `HostLine` last gave.
    void Receive(std::string_view bytes, Micros now);
    /// Bytes that have come out of the indicator by `now`, each given once.
    std::string Transmit(Micros now);
    /// When `Transmit` will next have something, or the state changes by itself; none if never.
    /// May lie in the past when neither was called for a while.
    std::optional<Micros> NextDue() const;

    /// A fault arises while the indicator runs. One of a line strikes the next line that comes,
    /// command or image line (its `line` is not asked), and the following ones up to `times`;
    /// one of a phase holds from now on.
    void Arise(const Fault& fault);

    /// A "hangup" fault has closed the terminal; nothing is heard or said any more.
    bool HungUp() const { return mHungUp; }
    /// A whole image was taken, the verdict was "DONE", and BOOT came. Of the last session;
    /// false again when the next one begins, like `SessionOver`.
    bool Booted() const { return mBooted; }
    /// A session has begun and ended, well or badly.
    bool SessionOver() const { return mSessionOver; }
    /// Verdicts given so far, in all sessions.
    unsigned Verdicts() const { return mVerdicts; }
    /// Flash memory as it stands.
    const FlashMemory& Memory() const { return mMonitor.Memory(); }
    /// What the host did against the dialogue, a sentence each, in all sessions.
    const std::vector<std::string>& Violations() const { return mViolations; }

private:
    struct Incoming {
        Nanos at;
        char byte;
        std::uint32_t bitsPerSecond;
        bool closed;  // the host's close stands in the queue behind its bytes
    };
    struct Outgoing {
        Nanos at;
        char byte;
    };
    struct Delivery {  // how an answer goes out: pieces of so many bytes, so far apart
        std::size_t piece = 1;
        Nanos gap = 0;
    };
    struct LineFaults;

    void Advance(Nanos now);
    void Hear(const Incoming& incoming);
    void TakeLine(const std::string& line, Nanos at);
    void TakeCommand(const std::string& line, Nanos at);
    void TakeImageLine(const std::string& line, Nanos at);
    LineFaults FaultsOf(const std::string& line);
    void AddArisen(LineFaults& faults);
    Answer AnswerTo(const std::string& line, const LineFaults& faults);
    const Fault* Find(FaultKind kind) const;
    const Fault* RefusalOf(std::string_view command) const;
    Nanos Say(std::string_view text, Nanos ready, std::uint32_t speed, Delivery delivery);
    Nanos Say(const LineFaults& faults, Answer answer, Nanos ready, std::uint32_t speed);
    void GiveVerdict(Nanos at);
    void CloseArrived(Nanos at);
    void PowerCycle();
    void HangUp();
    void BeginSession();
    void EndSession(bool booted);
    void NoteWrongSpeed(std::uint32_t bitsPerSecond);
    std::uint32_t CharacterBits(std::uint32_t bitsPerSecond) const;
    std::string TakeDue(Nanos now);

    IndicatorOptions mOptions;
    BootMonitor mMonitor;

    LineSettings mHostLine;
    bool mHostOpen = false;
    std::deque<Incoming> mIncoming;
    std::deque<Outgoing> mOutgoing;
    UartPacing mInPacing;
    UartPacing mOutPacing;
    std::optional<Nanos> mVerdictAt;
    std::optional<Nanos> mReopenBy;

    std::string mLine;                     // what arrived since the last CR
    std::optional<std::string> mPrevious;  // the image line before, as the host sent it
    std::size_t mLineNumber = 0;           // of `mPrevious`, among distinct lines
    std::vector<unsigned> mFaultUses;      // arrivals spent, by index of `mOptions.faults`
    std::vector<Fault> mArisen;            // of lines, `times` counted down

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
