// The real message queue inside modal loops, of the system or of a modal window.
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "dialogs/frmAbout.hpp"
#include "dialogs/frmStatus.hpp"
#include "tests/windows/RealWindows.hpp"

namespace vantor {
namespace {

class Pump : public OnRealWindows {
protected:
    Pump() { window->Show(); }
    ~Pump() override { window->Unload(); }

    Win32MessagePump& queue = platform.queue;
    std::shared_ptr<Form> window = std::make_shared<frmStatus>(platform.manager, platform.strings);
    std::shared_ptr<Form> modal = std::make_shared<frmAbout>(platform.manager, platform.strings);
};

constexpr const wchar_t* kBoxTitle = L"A box of this test";

struct Loop {
    const char* name;
    void (*enter)(const Form& owner, Form& modal);
    void (*leave)(Form& modal);  // called repeatedly
};

const Loop kLoops[] = {
    {"Menu",
     [](const Form& owner, Form&) {
         const HMENU menu = CreatePopupMenu();
         AppendMenuW(menu, MF_STRING, 1, L"Entry");
         TrackPopupMenu(menu, TPM_RETURNCMD, 0, 0, 0, WindowOf(owner), nullptr);
         DestroyMenu(menu);
     },
     [](Form&) { EndMenu(); }},
    {"MessageBox",
     [](const Form& owner, Form&) {
         EXPECT_EQ(MessageBoxW(WindowOf(owner), L"Text", kBoxTitle, MB_OKCANCEL), IDOK);
     },
     [](Form&) { PostMessageW(FindWindowW(L"#32770", kBoxTitle), WM_COMMAND, IDOK, 0); }},
    {"ModalWindow", [](const Form& owner, Form& modal) { modal.Show(ShowMode::Modal, &owner); },
     [](Form& modal) { modal.Unload(); }}};

class PumpInALoop : public Pump, public testing::WithParamInterface<Loop> {};

// Posted messages have priority over timers, so between two ticks the source is polled as often as
// another thread requests it; its own timer could not do that.
TEST_P(PumpInALoop, TicksAndHearsEveryWakeUp) {
    constexpr int kWakeUps = 50;
    int ticks = 0;
    int polls = 0;
    int pollsWithinATick = 0;
    const auto source = queue.AddSource([&] { ++polls; });
    const TimerId timer = queue.StartTimer(10, [&] {
        if (++ticks == 1) {
            std::thread([&] {
                for (int i = 0; i < kWakeUps; ++i) queue.WakeUp(source);
            }).join();
            return;
        }
        if (ticks == 2) pollsWithinATick = polls;
        GetParam().leave(*modal);
    });
    GetParam().enter(*window, *modal);
    queue.StopTimer(timer);
    queue.RemoveSource(source);
    EXPECT_GE(ticks, 2);
    EXPECT_GE(pollsWithinATick, kWakeUps);
}

INSTANTIATE_TEST_SUITE_P(Real, PumpInALoop, testing::ValuesIn(kLoops),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(Pump, AStoppedTimerSwallowsTheTickThatIsInTheQueue) {
    const HWND hidden = FindWindowExW(HWND_MESSAGE, nullptr, L"VantorMessagePump", nullptr);
    int ticks = 0;
    const TimerId timer = queue.StartTimer(3'600'000, [&] { ++ticks; });
    PostMessageW(hidden, WM_TIMER, timer, 0);
    queue.PumpPending();
    EXPECT_EQ(ticks, 1);
    PostMessageW(hidden, WM_TIMER, timer, 0);
    queue.StopTimer(timer);
    queue.PumpPending();
    EXPECT_EQ(ticks, 1);
}

TEST_F(Pump, InputIsSeenBeforeATickThatIsInTheQueueAndMayStopItsTimer) {
    const HWND hidden = FindWindowExW(HWND_MESSAGE, nullptr, L"VantorMessagePump", nullptr);
    int ticks = 0;
    const TimerId timer = queue.StartTimer(3'600'000, [&] { ++ticks; });
    const auto source = queue.AddSource([&] { queue.StopTimer(timer); });
    PostMessageW(hidden, WM_TIMER, timer, 0);
    queue.PumpPending();
    queue.RemoveSource(source);
    EXPECT_EQ(ticks, 0);
}

TEST_F(Pump, ATimerTicksThoughMessagesNeverEnd) {
    Win32MessagePump own;  // without sources, whose timer would come first
    int ticks = 0;
    own.StartTimer(10, [&] { ++ticks; });
    Sleep(100);
    for (int i = 0; i < 2000; ++i) PostMessageW(WindowOf(*window), WM_NULL, 0, 0);
    own.PumpPending();
    EXPECT_GE(ticks, 1);
}

TEST_F(Pump, QuitInsideAModalWindowEndsItsLoopAndTheOneAround) {
    bool entered = false;
    bool quit = false;
    bool left = false;
    const TimerId opens = queue.StartTimer(10, [&] {
        if (std::exchange(entered, true)) return;
        modal->Show(ShowMode::Modal);
        left = true;
    });
    const TimerId quits = queue.StartTimer(30, [&] {
        if (entered && !std::exchange(quit, true)) queue.Quit();
    });
    queue.Run();
    EXPECT_TRUE(left);
    EXPECT_FALSE(modal->Gone());
    queue.StopTimer(opens);
    queue.StopTimer(quits);
    modal->Unload();
}

}  // namespace
}  // namespace vantor
