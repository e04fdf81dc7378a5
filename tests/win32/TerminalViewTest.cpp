// The terminal's window: what it paints, and the effect of mouse, wheel and keys on its control.
#include <gtest/gtest.h>

#include <string>

#include "monitor/frmMonitor.hpp"
#include "platform/win32/Win32ChildControl.hpp"
#include "tests/unit/Wire.hpp"
#include "tests/win32/RealWindows.hpp"

namespace vantor {
namespace {

class TerminalView : public testing::Test, public MonitorOwner {
protected:
    TerminalView() {
        platform.ports.Plug("COM1", wire);
        monitor->Show();
        view = GetDlgItem(WindowOf(*monitor), kFirstChildId);
        for (int i = 10; i < 99; ++i) {
            screen.Print("line " + std::to_string(i));
            screen.CarriageReturn();
            screen.LineFeed();
        }
        terminal.Refresh();
        RECT client{};
        GetClientRect(view, &client);
        width = static_cast<int>(client.right) / screen.Columns();
        height = static_cast<int>(client.bottom) / screen.Rows();
    }
    ~TerminalView() override { monitor->Unload(); }

    LPARAM At(int row, int column) const {
        return MAKELPARAM(column * width + width / 4, row * height + height / 2);
    }
    void Send(UINT message, WPARAM first, LPARAM second = 0) const {
        SendMessageW(view, message, first, second);
    }

    RealWindows platform;
    Wire wire;
    std::shared_ptr<frmMonitor> monitor =
        std::make_shared<frmMonitor>(platform.desktop, platform.real, *this);
    TerminalControl& terminal = monitor->comMonitor;
    TerminalScreen& screen = terminal.Screen();
    HWND view = nullptr;
    int width = 0;
    int height = 0;

private:
    bool CloseIsWaiting() const override { return false; }
    void ResumeClose() override {}
};

TEST_F(TerminalView, ADragMarksTextWhichCtrlCCopiesInsteadOfBeingSent) {
    terminal.PerformCommand(TerminalCommand::Open);
    terminal.ScrollTo(0);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(1, 5));
    Send(WM_MOUSEMOVE, MK_LBUTTON, At(2, 6));
    Send(WM_LBUTTONUP, 0, At(2, 6));
    Send(WM_MOUSEMOVE, 0, At(4, 0));
    EXPECT_EQ(terminal.SelectedText(), "11\r\nline 1");
    Send(WM_CHAR, 3);
    EXPECT_EQ(platform.clipboard.Text(), "11\r\nline 1");
    EXPECT_EQ(wire.received, "");
    Send(WM_CHAR, 'a');  // clears the selection
    Send(WM_CHAR, 3);
    platform.queue.PumpPending();
    EXPECT_EQ(wire.received, "a\x03");
}

TEST_F(TerminalView, WheelAndScrollBarShowWhatHasLeftTheScreen) {
    const std::int64_t bottom = screen.TopLine();
    for (int i = 0; i < 3; ++i) Send(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2));
    EXPECT_EQ(terminal.FirstShownLine(), bottom - 3);
    Send(WM_VSCROLL, SB_TOP);
    std::wstring text(200, L'\0');
    GetWindowTextW(view, text.data(), static_cast<int>(text.size()));
    EXPECT_TRUE(text.starts_with(L"line 10\r\nline 11\r\n"));
    Send(WM_VSCROLL, SB_BOTTOM);
    EXPECT_EQ(terminal.FirstShownLine(), bottom);
}

TEST_F(TerminalView, ACharacterThatArrivesHasItsRowPaintedAlone) {
    terminal.PerformCommand(TerminalCommand::Open);
    terminal.LocalEcho(true);
    UpdateWindow(view);
    terminal.Key("x");
    RECT dirty{};
    GetUpdateRect(view, &dirty, FALSE);
    EXPECT_EQ(dirty.top, screen.Cursor().row * height);
    EXPECT_EQ(dirty.bottom - dirty.top, height);
}

}  // namespace
}  // namespace vantor
