// A picture box: a panel for other controls, a printed text, or a picture, which can be a button.
#include <windowsx.h>

#include <string>
#include <utility>

#include "controls/Controls.hpp"
#include "platform/win32/services/Win32Pictures.hpp"
#include "platform/win32/windows/Win32Banner.hpp"
#include "platform/win32/windows/Win32ChildControl.hpp"

namespace vantor {
namespace {

NativeKind NativeFor(const ControlStyle& style) {
    if (style.clickable) return {kPanelClass, WS_TABSTOP | WS_CLIPSIBLINGS};
    return {kPanelClass, WS_CLIPCHILDREN | WS_CLIPSIBLINGS, WS_EX_CONTROLPARENT};
}

class PictureBoxChild : public Win32ChildControl {
public:
    explicit PictureBoxChild(const ChildSource& source)
        : Win32ChildControl(source, NativeFor(source.style)) {}

    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_ERASEBKGND && Paint(reinterpret_cast<HDC>(wParam))) return 1;
        if (!Style().clickable) return std::nullopt;
        return OnButtonMessage(message, wParam, lParam);
    }

private:
    PictureBox& Box() const { return ModelAs<PictureBox>(); }
    // A click is a press and a release on the same picture, as on a button. A release alone can end
    // another action, such as the double click on the title bar that moves a picture under the
    // mouse.
    std::optional<LRESULT> OnButtonMessage(UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_LBUTTONDOWN:
                SetCapture(Window());
                mPressed = true;
                return 0;
            case WM_LBUTTONUP: {
                if (!std::exchange(mPressed, false)) return 0;
                ReleaseCapture();
                const RECT inside = ClientArea();
                if (PtInRect(&inside, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}) == 0) return 0;
                break;
            }
            case WM_CAPTURECHANGED:
                mPressed = false;
                return 0;
            case WM_GETDLGCODE: {
                // A button that takes Enter itself, so that the default button does not get it.
                const auto* const key = reinterpret_cast<const MSG*>(lParam);
                const bool enter = key != nullptr && key->wParam == VK_RETURN;
                return DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON | (enter ? DLGC_WANTMESSAGE : 0);
            }
            case WM_KEYDOWN:
                if (wParam != VK_SPACE && wParam != VK_RETURN) return std::nullopt;
                if ((HIWORD(lParam) & KF_REPEAT) != 0) return 0;
                break;
            case WM_SETFOCUS:
            case WM_KILLFOCUS:
                InvalidateRect(Window(), nullptr, TRUE);
                return 0;
            default:
                return std::nullopt;
        }
        Box().Press();
        return 0;
    }

    // The window text is what a screen reader reads.
    void FollowValue() override {
        std::wstring all;
        for (const PictureBox::Printed& printed : Box().PrintedTexts()) {
            if (!all.empty()) all += L"\r\n";
            all += ToWide(printed.text);
        }
        if (Box().SpokenName().empty()) SetWindowTextW(Window(), all.c_str());
        InvalidateRect(Window(), nullptr, TRUE);
    }

    RECT ClientArea() const {
        RECT area{};
        GetClientRect(Window(), &area);
        return area;
    }

    // False, with nothing painted, for a plain panel.
    bool Paint(HDC target) const {
        const RECT area = ClientArea();
        const Ground ground = Style().ground;
        if (Box().Loaded() != nullptr)
            static_cast<const Win32Picture&>(*Box().Loaded()).Draw(target, area);
        else if (ground == Ground::Banner)
            DrawBanner(mContext, target, area);
        else if (ground == Ground::CaptionBar || !Box().PrintedTexts().empty())
            PaintPrinted(target, area);
        else
            return false;
        if (Style().clickable && GetFocus() == Window()) PaintFocus(target, area);
        return true;
    }

    void PaintPrinted(HDC target, const RECT& area) const {
        const bool captionBar = Style().ground == Ground::CaptionBar;
        FillRect(target, &area, GetSysColorBrush(captionBar ? COLOR_ACTIVECAPTION : COLOR_BTNFACE));
        SetBkMode(target, TRANSPARENT);
        SetTextColor(target, GetSysColor(captionBar ? COLOR_CAPTIONTEXT : COLOR_BTNTEXT));
        for (const PictureBox::Printed& printed : Box().PrintedTexts()) {
            const Win32Selected font(target,
                                     mContext.Font(Style().points, Style().bold, printed.fontName));
            const std::wstring text = ToWide(printed.text);
            TextOutW(target, mContext.ToPixels(printed.left), mContext.ToPixels(printed.top),
                     text.c_str(), static_cast<int>(text.size()));
        }
    }

    // Two edges of opposite colours: one of them is visible on any picture.
    void PaintFocus(HDC target, RECT area) const {
        constexpr float kEdgeTwips = 15;
        const int edge = mContext.ToPixels(kEdgeTwips);
        for (const int colour : {COLOR_WINDOWTEXT, COLOR_WINDOW})
            for (int i = 0; i < edge; ++i) {
                FrameRect(target, &area, GetSysColorBrush(colour));
                InflateRect(&area, -1, -1);
            }
    }

    bool mPressed = false;  // the mouse button went down on the picture
};

}  // namespace

std::unique_ptr<Win32ChildControl> MakePictureBox(const ChildSource& source) {
    return std::make_unique<PictureBoxChild>(source);
}

}  // namespace vantor
