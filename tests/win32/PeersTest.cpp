// Leak checks of the real windows, and their replies to window messages.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "app/frmMain.hpp"
#include "dialogs/frmAbout.hpp"
#include "dialogs/frmStatus.hpp"
#include "monitor/frmMonitor.hpp"
#include "monitor/frmPortSettings.hpp"
#include "monitor/frmSend.hpp"
#include "rehearsal/Images.hpp"
#include "settings/CAppSettings.hpp"
#include "settings/frmConfigure.hpp"
#include "simulator/VirtualIndicator.hpp"
#include "tests/win32/RealWindows.hpp"

#include <commctrl.h>
#include <oleacc.h>

namespace vantor {
namespace {

BOOL CALLBACK CountWindow(HWND, LPARAM total) {
    ++*reinterpret_cast<int*>(total);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM total) {
    EnumChildWindows(window, CountWindow, total);
    return CountWindow(window, total);
}

/// Kernel handles of this process, counted here because Wine's count always reads 0.
int OpenHandles() {
    constexpr UINT_PTR kBeyond = 0x8000;
    int count = 0;
    DWORD flags = 0;
    for (UINT_PTR handle = 4; handle < kBeyond; handle += 4)
        if (GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0) ++count;
    return count;
}

class RealPeers : public testing::Test {
protected:
    // A one-pixel picture for the main window to load.
    RealPeers() {
        using namespace std::string_literals;
        const std::string header =
            "BM\x3a\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0"s;
        platform.files.Add(platform.folders.ApplicationData() + "/TSMR/CALDOR/cache/dot.bmp",
                           header + std::string(28, '\0'));
    }

    /// Objects held now, as counted by the peers and, where possible, by the system.
    std::map<std::string, int> Held() const {
        const HeldObjects& held = platform.windows.Held();
        int windows = 0;
        EnumThreadWindows(GetCurrentThreadId(), CountWithChildren,
                          reinterpret_cast<LPARAM>(&windows));
        return {{"windows", held.windows},
                {"menus", held.menus},
                {"fonts", held.fonts},
                {"pictures", platform.images.Held()},
                {"windows of the thread", windows},
                {"handles of the process", OpenHandles()}};
    }

    RealWindows platform;
};

struct WindowKind {
    const char* name;
    std::shared_ptr<Form> (*make)(Desktop&, Platform&);
};

template <class Window>
std::shared_ptr<Form> Make(Desktop& desktop, Platform& platform) {
    if constexpr (std::is_constructible_v<Window, Desktop&, Platform&>)
        return std::make_shared<Window>(desktop, platform);
    else
        return std::make_shared<Window>(desktop, platform.strings);
}

std::shared_ptr<Form> MakeMonitor(Desktop& desktop, Platform& platform) {
    struct : MonitorOwner {
        bool CloseIsWaiting() const override { return false; }
        void ResumeClose() override {}
    } static nobody;
    return std::make_shared<frmMonitor>(desktop, platform, nobody);
}

struct AMonitor {
    std::shared_ptr<Form> monitor;
};

/// The dialog of a terminal that is never shown.
class PortSettings : AMonitor, public frmPortSettings {
public:
    PortSettings(Desktop& desktop, Platform& platform)
        : AMonitor{MakeMonitor(desktop, platform)},
          frmPortSettings(desktop, platform, dynamic_cast<frmMonitor&>(*monitor).comMonitor) {}
};

class Options : public frmConfigure, OptionsOwner {
public:
    Options(Desktop& desktop, Platform& platform)
        : frmConfigure(desktop, platform),
          mSettings(platform.registry, platform.codePage, platform.files) {}

private:
    std::vector<std::string> CommPorts() const override { return {"COM1", "COM2"}; }
    void Form_Load() override {
        frmConfigure::Form_Load();
        mSettings.Initialize();
        Initialize(mSettings, *this);
    }
    CAppSettings mSettings;
};

class PeersOfAWindow : public RealPeers, public testing::WithParamInterface<WindowKind> {
protected:
    /// Opens the window, lets it be painted, and closes it like a user.
    void OpenAndClose() {
        const auto form = GetParam().make(platform.desktop, platform.real);
        form->Show();
        // WM_TIMER is delivered only when there is nothing left to paint.
        const TimerId timer =
            platform.queue.StartTimer(10, [&] { SendMessageW(WindowOf(*form), WM_CLOSE, 0, 0); });
        platform.queue.Run();
        platform.queue.StopTimer(timer);
        EXPECT_TRUE(form->Gone());
    }
};

TEST_P(PeersOfAWindow, GiveBackWhatAHundredOpeningsTook) {
    for (int i = 0; i < 3; ++i) OpenAndClose();  // the system caches some objects
    const auto before = Held();
    for (int i = 0; i < 100; ++i) OpenAndClose();
    EXPECT_EQ(Held(), before);
    EXPECT_EQ(Told(platform), Texts{});
}

/// The accessible name of `window` (IAccessible::get_accName), as screen readers read it.
std::wstring ReadAloud(HWND window) {
    IAccessible* object = nullptr;
    if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT),
                                          __uuidof(IAccessible),
                                          reinterpret_cast<void**>(&object))))
        return {};
    VARIANT self{};
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    BSTR name = nullptr;
    std::wstring text;
    if (object->get_accName(self, &name) == S_OK && name != nullptr) text = name;
    SysFreeString(name);
    object->Release();
    return text;
}

TEST_P(PeersOfAWindow, HaveANameToReadAloudForEachControlThatTheKeyboardReaches) {
    const auto form = GetParam().make(platform.desktop, platform.real);
    form->Show();
    std::vector<HWND> children;
    const auto collect = [](HWND child, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
        return TRUE;
    };
    EnumChildWindows(WindowOf(*form), collect, reinterpret_cast<LPARAM>(&children));
    for (const HWND child : children) {
        wchar_t kind[64] = {};
        GetClassNameW(child, kind, 64);
        const bool reached = (GetWindowLongPtrW(child, GWL_STYLE) & WS_TABSTOP) != 0;
        if (!reached && std::wstring(kind) != PROGRESS_CLASSW) continue;
        EXPECT_NE(ReadAloud(child), L"") << ToUtf8(kind) << ' ' << GetDlgCtrlID(child);
    }
    form->Unload();
}

INSTANTIATE_TEST_SUITE_P(Real, PeersOfAWindow,
                         testing::Values(WindowKind{"frmMain", Make<frmMain>},
                                         WindowKind{"frmStatus", Make<frmStatus>},
                                         WindowKind{"frmAbout", Make<frmAbout>},
                                         WindowKind{"frmMonitor", MakeMonitor},
                                         WindowKind{"frmPortSettings", Make<PortSettings>},
                                         WindowKind{"frmSend", Make<frmSend>},
                                         WindowKind{"frmConfigure", Make<Options>}),
                         [](const auto& row) { return std::string(row.param.name); });

class PeersInAFlash : public RealPeers {
protected:
    PeersInAFlash() {
        const std::string image = ImageOf(20);
        IndicatorOptions options;
        options.expected = FlashMemory::FromRecords(image);
        indicator.emplace(std::move(options));
        farEnd.emplace(*indicator, platform.clock);
        platform.ports.Plug("COM1", *farEnd);
        platform.files.Add(kPath, image);
        window->Show();
    }
    ~PeersInAFlash() override { window->Unload(); }

    void Flash() {
        platform.dialogs.choices = {kPath};
        window->cmdFlash.Press();
        ASSERT_EQ(window->Session().Outcome(), FlashOutcome::Done);
    }

    static constexpr const char* kPath = "/home/tech/Documents/m40.run";
    std::shared_ptr<frmMain> window = std::make_shared<frmMain>(platform.desktop, platform.real);
    std::optional<VirtualIndicator> indicator;
    std::optional<IndicatorFarEnd> farEnd;
};

TEST_F(PeersInAFlash, GiveBackWhatTwentyFlashesTook) {
    Flash();
    const auto before = Held();
    for (int i = 0; i < 20; ++i) Flash();
    EXPECT_EQ(Held(), before);
}

TEST_F(PeersInAFlash, RefuseShutdownAndSleepAndHonourBothWhenIdle) {
    const auto mayEnd = [this] {
        return SendMessageW(WindowOf(*window), WM_QUERYENDSESSION, 0, 0) != 0;
    };
    // A single request without ES_CONTINUOUS leaves the state unchanged.
    const auto wake = [] { return SetThreadExecutionState(ES_SYSTEM_REQUIRED); };
    EXPECT_TRUE(mayEnd());
    int boxes = 0;
    platform.boxes.whileOpen = [&](const MessageBoxRequest& box) {
        ++boxes;
        EXPECT_FALSE(mayEnd()) << box.text;
        EXPECT_EQ(wake(), ES_CONTINUOUS | ES_SYSTEM_REQUIRED) << box.text;
    };
    Flash();
    EXPECT_EQ(boxes, 2);
    EXPECT_FALSE(window->Flags().mblnCloseRequested || window->Flags().mblnAbortFlash);
    EXPECT_TRUE(mayEnd());
    EXPECT_EQ(wake(), ES_CONTINUOUS);
    SendMessageW(WindowOf(*window), WM_ENDSESSION, TRUE, 0);
    EXPECT_TRUE(window->Gone());
}

}  // namespace
}  // namespace vantor
