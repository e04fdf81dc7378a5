#include "platform/win32/windows/Win32ChildControl.hpp"

#include <commctrl.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "controls/Controls.hpp"
#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/terminal/Win32TerminalView.hpp"

namespace vantor {
namespace {

NativeKind LabelKind(const ControlStyle& style) {
    return {L"STATIC",
            (style.centred ? DWORD{SS_CENTER} : DWORD{SS_LEFT}) |
                (style.verbatim ? DWORD{SS_NOPREFIX | SS_ENDELLIPSIS} : 0),
            0, Property::Caption};
}

class ButtonChild : public Win32ChildControl {
public:
    explicit ButtonChild(const ChildSource& source)
        : Win32ChildControl(source,
                            {L"BUTTON", (source.style.holdsFocus ? 0 : DWORD{WS_TABSTOP}) |
                                            (source.style.defaultButton ? DWORD{BS_DEFPUSHBUTTON}
                                                                        : DWORD{BS_PUSHBUTTON})}) {}

    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM) override {
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED) ModelAs<CommandButton>().Press();
        return 0;
    }
};

class ComboChild : public Win32ChildControl {
public:
    explicit ComboChild(const ChildSource& source)
        : Win32ChildControl(source, {L"COMBOBOX", WS_TABSTOP | WS_VSCROLL |
                                                      (source.style.editable
                                                           ? DWORD{CBS_DROPDOWN | CBS_AUTOHSCROLL}
                                                           : DWORD{CBS_DROPDOWNLIST})}) {}

    void Follow(Property property) override {
        if (property == Property::SpokenName)  // its window text is its value
            mContext.spokenTexts.SetName(Window(), ToWide(Combo().SpokenName()));
        else
            Win32ChildControl::Follow(property);
    }

    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM) override {
        if (message == WM_COMMAND) OnNotification(HIWORD(wParam));
        if (message != kChoiceMade) return 0;
        mChosen = false;
        Combo().Choose(static_cast<int>(Send(CB_GETCURSEL)));
        return 0;
    }

private:
    ComboBox& Combo() const { return ModelAs<ComboBox>(); }

    // Each choice of the user, even of the same item, posts one `kChoiceMade` with the child's id
    // to the form. An open list reports when it closes, not at every item that the arrow keys pass;
    // a closed one at every arrow key. In both cases several messages can announce one choice.
    void OnNotification(UINT notification) {
        const bool open = Send(CB_GETDROPPEDSTATE) != 0;
        if (Style().editable && (notification == CBN_EDITCHANGE || notification == CBN_KILLFOCUS))
            Combo().Text(ShownText());
        if (notification == CBN_SELENDCANCEL) FollowValue();
        if (notification != CBN_SELENDOK && (notification != CBN_SELCHANGE || open)) return;
        // With a full queue the next notification tries again.
        if (!mChosen)
            mChosen = PostMessageW(GetAncestor(Window(), GA_ROOT), kChoiceMade,
                                   static_cast<WPARAM>(GetDlgCtrlID(Window())), 0) != 0;
    }

    // The height of a combo box includes its drop-down list; closed, its height follows the font.
    RECT OuterPlace() const override {
        constexpr int kMostListed = 12;  // items of an open list; more are scrolled
        RECT place = Win32ChildControl::OuterPlace();
        place.bottom += (place.bottom - place.top) * kMostListed;
        return place;
    }

    // Refilling the list would close the open drop-down.
    void FollowValue() override {
        if (mListed != Combo().Items()) {
            mListed = Combo().Items();
            Send(CB_RESETCONTENT);
            for (const std::string& item : mListed) Send(CB_ADDSTRING, 0, ToWide(item).c_str());
            WidenList();
        }
        if (Style().editable && Combo().ListIndex() < 0) return FollowText();
        if (Send(CB_GETCURSEL) != Combo().ListIndex())
            Send(CB_SETCURSEL, static_cast<WPARAM>(Combo().ListIndex()));
    }

    std::string ShownText() const {
        std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(Window())), L'\0');
        const int length = GetWindowTextW(Window(), text.data(), static_cast<int>(text.size()) + 1);
        text.resize(static_cast<std::size_t>(length));
        return ToUtf8(text);
    }

    // What the user types is already there, and setting it again would move the caret.
    void FollowText() const {
        if (ShownText() != Combo().Text()) SetWindowTextW(Window(), ToWide(Combo().Text()).c_str());
    }

    /// Makes the open list as wide as its widest item.
    void WidenList() const {
        constexpr float kMarginTwips = 120;
        LONG widest = 0;
        for (const std::string& item : mListed)
            widest = std::max(widest, TextExtent(ToWide(item)).cx);
        widest += GetSystemMetrics(SM_CXVSCROLL) + mContext.ToPixels(kMarginTwips);
        Send(CB_SETDROPPEDWIDTH, static_cast<WPARAM>(widest));
    }

    std::vector<std::string> mListed;  // the items that the window shows
    bool mChosen = false;              // a choice is posted to the form
};

class StatusBarChild : public Win32ChildControl {
public:
    explicit StatusBarChild(const ChildSource& source)
        : Win32ChildControl(source, {STATUSCLASSNAMEW, DWORD{SBARS_SIZEGRIP} | DWORD{CCS_BOTTOM}}) {
    }

    void Follow(Property property) override {
        if (property != Property::Place) Win32ChildControl::Follow(property);
    }

    // The bar moves itself to the bottom edge; its model gets the height.
    void ParentResized() override {
        Send(WM_SIZE);
        RECT outer{};
        if (GetWindowRect(Window(), &outer) == 0) return;
        MapWindowPoints(nullptr, GetParent(Window()), reinterpret_cast<POINT*>(&outer), 2);
        if (const Place place = mContext.ToTwips(outer); place != Bar().Place()) Bar().Place(place);
    }

private:
    StatusBar& Bar() const { return ModelAs<StatusBar>(); }
    // Each panel is as wide as its text; the last one takes the remaining width.
    void FollowValue() override {
        constexpr float kLeastTwips = 1800;
        constexpr float kMarginTwips = 300;
        const std::vector<StatusBar::Panel>& panels = Bar().Panels();
        std::vector<int> edges(panels.size(), -1);
        int edge = 0;
        for (std::size_t i = 0; i + 1 < panels.size(); ++i) {
            const int text = static_cast<int>(TextExtent(ToWide(panels[i].text)).cx);
            edge +=
                std::max(mContext.ToPixels(kLeastTwips), text + mContext.ToPixels(kMarginTwips));
            edges[i] = edge;
        }
        Send(SB_SETPARTS, edges.size(), edges.data());
        for (std::size_t i = 0; i < panels.size(); ++i)
            Send(SB_SETTEXTW, i, ToWide(panels[i].text).c_str());
    }
};

class IconChild : public Win32ChildControl {
public:
    explicit IconChild(const ChildSource& source)
        : Win32ChildControl(source, {L"STATIC", SS_ICON | SS_REALSIZECONTROL}) {}

private:
    void Created() override {
        const RECT place = OuterPlace();
        // A shared icon could be the one of the title bar, in its size.
        mIcon.reset(static_cast<HICON>(LoadImageW(mContext.Instance(), MAKEINTRESOURCEW(1),
                                                  IMAGE_ICON, place.right - place.left,
                                                  place.bottom - place.top, LR_DEFAULTCOLOR)));
        Send(STM_SETICON, reinterpret_cast<WPARAM>(mIcon.get()));
    }

    Owned<HICON, DestroyIcon> mIcon;
};

class ProgressChild : public Win32ChildControl {
public:
    explicit ProgressChild(const ChildSource& source)
        : Win32ChildControl(source, {PROGRESS_CLASSW, 0, 0, Property::Value}) {}

private:
    ProgressBar& Bar() const { return ModelAs<ProgressBar>(); }
    void FollowValue() override {
        const std::int16_t value = Bar().Value();
        if (Send(PBM_GETPOS) != value) Send(PBM_SETPOS, static_cast<WPARAM>(value));
    }
};

class ListViewChild : public Win32ChildControl {
public:
    explicit ListViewChild(const ChildSource& source)
        : Win32ChildControl(
              source, {WC_LISTVIEWW, WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS}) {
    }

    std::optional<LRESULT> OnMessage(UINT message, WPARAM, LPARAM lParam) override {
        constexpr auto kFromTheStart = static_cast<WPARAM>(-1);
        if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == NM_CLICK)
            List().Choose(
                static_cast<int>(Send(LVM_GETNEXTITEM, kFromTheStart, LPARAM{LVNI_SELECTED})));
        return 0;
    }

private:
    ListView& List() const { return ModelAs<ListView>(); }
    void Created() override {
        constexpr float kColumnTwips = 1500;
        WPARAM at = 0;
        for (const std::string& title : List().Columns()) {
            std::wstring text = ToWide(title);
            LVCOLUMNW column{};
            column.mask = LVCF_TEXT | LVCF_WIDTH;
            column.pszText = text.data();
            column.cx = mContext.ToPixels(kColumnTwips);
            Send(LVM_INSERTCOLUMNW, at++, &column);
        }
    }
};

class TerminalChild : public Win32ChildControl {
public:
    explicit TerminalChild(const ChildSource& source)
        : Win32ChildControl(source, {kTerminalClass, WS_TABSTOP | WS_VSCROLL, WS_EX_CLIENTEDGE}) {}

    void Follow(Property property) override {
        if (property == Property::Value || property == Property::Repaint)
            FollowTerminal(*mView, property);
        else if (property == Property::SpokenName)  // its window text is its contents
            mContext.spokenTexts.SetName(Window(), ToWide(Terminal().SpokenName()));
        else if (property != Property::Border)  // it always has the same one
            Win32ChildControl::Follow(property);
    }

    void ParentSizing(bool sizing) override { ShowTerminalSize(*mView, sizing); }
    Size TerminalSize(int columns, int rows) const override {
        const SIZE size = TerminalOuterSize(*mView, columns, rows);
        // The edges of a window are rounded to pixels one by one: no pixel may be missing.
        const float slack = mContext.ToTwips(1) / 2;
        return {mContext.ToTwips(size.cx) + slack, mContext.ToTwips(size.cy) + slack};
    }

private:
    TerminalControl& Terminal() const { return ModelAs<TerminalControl>(); }
    void Created() override { mView = MakeTerminalView(mContext, Terminal(), Style(), Window()); }

    std::shared_ptr<Win32TerminalView> mView;
};

std::unique_ptr<Win32ChildControl> MakeKind(const ChildSource& source) {
    switch (source.control.Kind()) {
        case ControlKind::Label:
            return std::make_unique<Win32ChildControl>(source, LabelKind(source.style));
        case ControlKind::CommandButton:
            return std::make_unique<ButtonChild>(source);
        case ControlKind::ComboBox:
            return std::make_unique<ComboChild>(source);
        case ControlKind::Icon:
            return std::make_unique<IconChild>(source);
        case ControlKind::ProgressBar:
            return std::make_unique<ProgressChild>(source);
        case ControlKind::ListView:
            return std::make_unique<ListViewChild>(source);
        case ControlKind::TreeView:
            return MakeTreeView(source);
        case ControlKind::StatusBar:
            return std::make_unique<StatusBarChild>(source);
        case ControlKind::Terminal:
            return std::make_unique<TerminalChild>(source);
        case ControlKind::PictureBox:
        case ControlKind::MenuItem:
            break;
    }
    return MakePictureBox(source);
}

}  // namespace

std::unique_ptr<Win32ChildControl> MakeChild(const ChildSource& source, HWND parent, int id) {
    std::unique_ptr<Win32ChildControl> child = MakeKind(source);
    child->Create(parent, id);
    return child;
}

}  // namespace vantor
