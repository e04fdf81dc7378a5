#include "platform/win32/services/Win32MessagePump.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "support/Traps.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

constexpr UINT kWakeUp = WM_APP;
// Above all timer identifiers, which are 32-bit.
constexpr UINT_PTR kPollTimer = UINT_PTR{1} << 32;
constexpr std::uint32_t kPollIntervalMs = 10;
// A port that is open all day and silent must not keep the processor from idling.
constexpr std::uint32_t kIdlePollIntervalMs = 200;
constexpr int kAttentivePolls = 100;
// Some milliseconds at most; otherwise the windows would respond late.
constexpr int kMostRounds = 16;
// A window that repaints continuously must delay neither the line nor the timers.
constexpr int kMostAtOnce = 500;

}  // namespace

Win32MessagePump::Win32MessagePump()
    : mWindow(MakeHiddenWindow(L"VantorMessagePump", OnMessage, HWND_MESSAGE, this)) {
    if (!mWindow) throw RuntimeError(ErrorNumber::OutOfMemory);
}

void Win32MessagePump::PumpPending() {
    MSG message{};
    int taken = 0;
    for (; taken < kMostAtOnce && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0; ++taken) {
        if (message.message == WM_QUIT) mQuit = true;
        Dispatch(message);
    }
    // WM_TIMER has the lowest priority; asked for explicitly, it is returned even now.
    if (taken == kMostAtOnce &&
        PeekMessageW(&message, mWindow.get(), WM_TIMER, WM_TIMER, PM_REMOVE) != 0)
        Dispatch(message);
    if (!mSources.empty()) PollSources();
}

void Win32MessagePump::Run() {
    while (WaitAndDispatch()) continue;
    mQuit = false;
}

bool Win32MessagePump::WaitAndDispatch() {
    MSG message{};
    if (!mQuit && GetMessageW(&message, nullptr, 0, 0) > 0)
        Dispatch(message);
    else
        mQuit = true;
    return !mQuit;
}

void Win32MessagePump::Dispatch(MSG& message) {
    if (mFilter && mFilter(message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

// A flag instead of PostQuitMessage: WM_QUIT would also end a box or menu that is open in
// the current callback.
void Win32MessagePump::Quit() {
    mQuit = true;
    PostMessageW(mWindow.get(), WM_NULL, 0, 0);  // a full queue wakes it too
}

TimerId Win32MessagePump::StartTimer(std::uint32_t intervalMs, std::function<void()> tick) {
    const TimerId id = ++mLastId;
    SetSystemTimer(id, intervalMs);
    mTimers.emplace(id, std::move(tick));
    return id;
}

// A tick that is already queued finds no timer.
void Win32MessagePump::StopTimer(TimerId id) {
    if (mTimers.erase(id) != 0) KillTimer(mWindow.get(), id);
}

Win32MessagePump::SourceId Win32MessagePump::AddSource(std::function<void()> poll) {
    mIdlePolls = 0;
    SetSystemTimer(kPollTimer, kPollIntervalMs);
    mSources.emplace(++mLastId, std::move(poll));
    return mLastId;
}

void Win32MessagePump::RemoveSource(SourceId id) {
    if (mSources.erase(id) == 0 || !mSources.empty()) return;
    KillTimer(mWindow.get(), kPollTimer);
}

void Win32MessagePump::Attend() {
    const bool idle = mIdlePolls >= kAttentivePolls;
    mIdlePolls = 0;
    if (idle && !mSources.empty()) SetSystemTimer(kPollTimer, kPollIntervalMs);
}

void Win32MessagePump::WakeUp(SourceId id) const {
    // If the queue is full, the next poll timer does it.
    PostMessageW(mWindow.get(), kWakeUp, id, 0);
}

LRESULT CALLBACK Win32MessagePump::OnMessage(HWND window, UINT message, WPARAM wParam,
                                             LPARAM lParam) {
    auto* const pump =
        reinterpret_cast<Win32MessagePump*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (pump == nullptr || (message != WM_TIMER && message != kWakeUp))
        return DefWindowProcW(window, message, wParam, lParam);
    Guarded("Win32MessagePump.OnMessage", [&] {
        if (message == WM_TIMER)
            pump->Tick(wParam);
        else
            pump->PollSource(static_cast<SourceId>(wParam));
    });
    return 0;
}

void Win32MessagePump::SetSystemTimer(UINT_PTR id, std::uint32_t intervalMs) const {
    if (SetTimer(mWindow.get(), id, intervalMs, nullptr) == 0)
        throw RuntimeError(ErrorNumber::OutOfMemory);
}

void Win32MessagePump::Tick(UINT_PTR id) {
    if (id == kPollTimer) {
        mIdlePolls = std::min(mIdlePolls + 1, kAttentivePolls);
        for (int round = 0; round < kMostRounds; ++round) {
            mAgain = false;
            PollSources();
            if (!mAgain) break;
        }
        // The interval restarts here: otherwise a slow poll would be due again at once,
        // and the queue would never be empty.
        const bool idle = mIdlePolls >= kAttentivePolls;
        if (!mSources.empty())
            SetSystemTimer(kPollTimer, idle ? kIdlePollIntervalMs : kPollIntervalMs);
        return;
    }
    // The system may deliver the tick before a poll: after the process was stopped, or in the
    // loop of a box or menu. A source may stop the timer.
    PollSources();
    const auto found = mTimers.find(static_cast<TimerId>(id));
    if (found == mTimers.end()) return;
    const std::function<void()> tick = found->second;  // it may stop its own timer
    tick();
}

void Win32MessagePump::PollSource(SourceId id) {
    const auto found = mSources.find(id);
    if (found == mSources.end()) return;
    const std::function<void()> poll = found->second;
    poll();
}

// Callbacks may change the table, so the pass iterates over a snapshot of the identifiers.
void Win32MessagePump::PollSources() {
    std::vector<SourceId> ids;
    ids.reserve(mSources.size());
    for (const auto& entry : mSources) ids.push_back(entry.first);
    for (const SourceId id : ids) PollSource(id);
}

}  // namespace vantor
