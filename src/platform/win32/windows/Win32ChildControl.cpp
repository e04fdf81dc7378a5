#include "platform/win32/windows/Win32ChildControl.hpp"

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "controls/Controls.hpp"
#include "platform/win32/terminal/Win32TerminalView.hpp"
#include "platform/win32/windows/Win32TreeView.hpp"

namespace vantor {
namespace {

constexpr int kMostListed = 12;  // items of an open list; more are scrolled

struct Looks {
    const wchar_t* windowClass;
    DWORD style;
    DWORD extendedStyle;
};

Looks LooksOf(const Control& control, const ControlDesign& row) {
    switch (control.Kind()) {
        case ControlKind::Label:
            return {L"STATIC",
                    (row.style.centred ? DWORD{SS_CENTER} : DWORD{SS_LEFT}) |
                        (row.style.verbatim ? DWORD{SS_NOPREFIX | SS_ENDELLIPSIS} : 0),
                    0};
        case ControlKind::CommandButton:
            return {L"BUTTON",
                    (row.style.holdsFocus ? 0 : DWORD{WS_TABSTOP}) |
                        (row.style.defaultButton ? DWORD{BS_DEFPUSHBUTTON} : DWORD{BS_PUSHBUTTON}),
                    0};
        case ControlKind::ComboBox:
            return {L"COMBOBOX", WS_TABSTOP | WS_VSCROLL | DWORD{CBS_DROPDOWNLIST}, 0};
        case ControlKind::StatusBar:
            return {STATUSCLASSNAMEW, DWORD{SBARS_SIZEGRIP} | DWORD{CCS_BOTTOM}, 0};
        case ControlKind::Icon:
            return {L"STATIC", SS_ICON | SS_REALSIZECONTROL, 0};
        case ControlKind::ProgressBar:
            return {PROGRESS_CLASSW, 0, 0};
        case ControlKind::ListView:
            return {WC_LISTVIEWW, WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS, 0};
        case ControlKind::TreeView:
            return {WC_TREEVIEWW,
                    WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT |
                        TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP,
                    0};
        case ControlKind::Terminal:
            return {kTerminalClass, WS_TABSTOP | WS_VSCROLL, WS_EX_CLIENTEDGE};
        default:
            if (row.style.clickable) return {kPanelClass, WS_TABSTOP | WS_CLIPSIBLINGS, 0};
            return {kPanelClass, WS_CLIPCHILDREN | WS_CLIPSIBLINGS, WS_EX_CONTROLPARENT};
    }
}

}  // namespace

bool HasWindow(ControlKind kind) {
    return kind != ControlKind::MenuItem;
}

Win32ChildControl::Win32ChildControl(Win32Context& context, Control& control,
                                     const ControlDesign& row, HWND parent, int id)
    : mContext(context), mControl(control), mRow(row), mShownCaption(control.Caption()) {
    const Looks looks = LooksOf(control, row);
    const RECT place = OuterPlace();
    const DWORD shown = control.Visible() ? WS_VISIBLE : 0;
    const DWORD usable = control.Enabled() ? 0 : WS_DISABLED;
    const HFONT font = context.Font(row.style.points, row.style.bold);
    mWindow = Made(CreateWindowExW(
        looks.extendedStyle, looks.windowClass, ToWide(control.Caption()).c_str(),
        WS_CHILD | looks.style | shown | usable, place.left, place.top, place.right - place.left,
        place.bottom - place.top, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
        context.Instance(), nullptr));
    SendMessageW(mWindow, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    if (control.Kind() == ControlKind::ListView) InsertColumns();
    if (control.Kind() == ControlKind::Terminal)
        mTerminal = std::make_shared<Win32TerminalView>(
            context, static_cast<TerminalControl&>(control), row.style, mWindow);
    if (control.Kind() == ControlKind::TreeView)
        mTree = std::make_unique<Win32TreeView>(static_cast<TreeView&>(control), mWindow);
    if (control.Kind() == ControlKind::Icon)
        SendMessageW(mWindow, STM_SETICON,
                     reinterpret_cast<WPARAM>(LoadImageW(context.Instance(), MAKEINTRESOURCEW(1),
                                                         IMAGE_ICON, place.right - place.left,
                                                         place.bottom - place.top, LR_SHARED)),
                     0);
    FollowBorder();
    FollowValue();
    ++mContext.held.windows;
}

Win32ChildControl::~Win32ChildControl() {
    --mContext.held.windows;
}

// The height of a combo box includes its drop-down list; closed, its height follows the font.
RECT Win32ChildControl::OuterPlace() const {
    RECT place = mContext.ToPixels(mControl.Place());
    if (mControl.Kind() == ControlKind::ComboBox)
        place.bottom += (place.bottom - place.top) * kMostListed;
    return place;
}

void Win32ChildControl::Follow(Property property) {
    if (mTerminal != nullptr && (property == Property::Value || property == Property::Repaint)) {
        mTerminal->Follow(property);
        return;
    }
    switch (property) {
        case Property::Caption:
            FollowCaption();
            break;
        case Property::SpokenName:
            FollowSpokenName();
            break;
        case Property::Enabled:
            static_cast<void>(EnableWindow(mWindow, mControl.Enabled() ? TRUE : FALSE));
            break;
        case Property::Visible:
            static_cast<void>(ShowWindow(mWindow, mControl.Visible() ? SW_SHOWNA : SW_HIDE));
            break;
        case Property::Place: {
            if (mControl.Kind() == ControlKind::StatusBar) break;
            const RECT place = OuterPlace();
            static_cast<void>(SetWindowPos(mWindow, nullptr, place.left, place.top,
                                           place.right - place.left, place.bottom - place.top,
                                           SWP_NOZORDER | SWP_NOACTIVATE));
            // Otherwise centred and wrapped text stays drawn for the old size.
            static_cast<void>(InvalidateRect(mWindow, nullptr, TRUE));
            break;
        }
        case Property::Border:
            FollowBorder();
            break;
        case Property::Value:
            FollowValue();
            break;
        case Property::ZOrder:
            BringToFront();
            break;
        case Property::Repaint:
            CatchUp();
            static_cast<void>(RedrawWindow(mWindow, nullptr, nullptr,
                                           RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW));
            break;
        case Property::State:
        case Property::ToolTip:
            break;  // handled by the form
    }
}

bool Win32ChildControl::FollowLater(Property property) {
    const bool text = property == Property::Caption && mControl.Kind() == ControlKind::Label;
    const bool bar = property == Property::Value && mControl.Kind() == ControlKind::ProgressBar;
    mLate = mLate || text || bar;
    return text || bar;
}

void Win32ChildControl::CatchUp() {
    if (!std::exchange(mLate, false)) return;
    FollowCaption();
    if (mControl.Kind() == ControlKind::ProgressBar) FollowValue();
}

// The caption mostly stays the same, and under some compatibility layers each call
// is a cross-process call.
void Win32ChildControl::FollowCaption() {
    if (mShownCaption == mControl.Caption()) return;
    mShownCaption = mControl.Caption();
    static_cast<void>(SetWindowTextW(mWindow, ToWide(mShownCaption).c_str()));
}

// These windows do not display their text; the text of a terminal is its contents.
void Win32ChildControl::FollowSpokenName() {
    const std::wstring name = ToWide(mControl.SpokenName());
    if (mTerminal == nullptr) static_cast<void>(SetWindowTextW(mWindow, name.c_str()));
    mContext.spokenNames.Set(mWindow, name);
}

void Win32ChildControl::ForgetSpokenName() {
    if (!mControl.SpokenName().empty()) mContext.spokenNames.Forget(mWindow);
}

void Win32ChildControl::FollowBorder() {
    if (mTerminal != nullptr) return;  // a terminal draws its own border
    LONG_PTR style = GetWindowLongPtrW(mWindow, GWL_EXSTYLE);
    const LONG_PTR before = style;
    style &= ~static_cast<LONG_PTR>(WS_EX_STATICEDGE | WS_EX_CLIENTEDGE);
    if (mControl.Border() == Border::Static) style |= WS_EX_STATICEDGE;
    if (mControl.Border() == Border::Sunken) style |= WS_EX_CLIENTEDGE;
    if (style == before) return;
    static_cast<void>(SetWindowLongPtrW(mWindow, GWL_EXSTYLE, style));
    static_cast<void>(
        SetWindowPos(mWindow, nullptr, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED));
}

void Win32ChildControl::FollowValue() {
    if (mControl.Kind() == ControlKind::ProgressBar) {
        const auto value = static_cast<WPARAM>(static_cast<ProgressBar&>(mControl).Value());
        if (static_cast<WPARAM>(SendMessageW(mWindow, PBM_GETPOS, 0, 0)) != value)
            SendMessageW(mWindow, PBM_SETPOS, value, 0);
    } else if (mControl.Kind() == ControlKind::ComboBox) {
        FollowList(static_cast<const ComboBox&>(mControl));
    } else if (mControl.Kind() == ControlKind::StatusBar) {
        FollowPanels(static_cast<const StatusBar&>(mControl));
    } else if (mControl.Kind() == ControlKind::PictureBox) {
        FollowPrinted(static_cast<const PictureBox&>(mControl));
    } else if (mTree != nullptr) {
        mTree->Follow();
    }
}

// Refilling the list would close the open drop-down.
void Win32ChildControl::FollowList(const ComboBox& combo) {
    if (mListed != combo.Items()) {
        mListed = combo.Items();
        SendMessageW(mWindow, CB_RESETCONTENT, 0, 0);
        for (const std::string& item : mListed)
            SendMessageW(mWindow, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(item).c_str()));
    }
    if (SendMessageW(mWindow, CB_GETCURSEL, 0, 0) != combo.ListIndex())
        SendMessageW(mWindow, CB_SETCURSEL, static_cast<WPARAM>(combo.ListIndex()), 0);
}

void Win32ChildControl::Commanded(UINT notification) {
    if (mControl.Kind() == ControlKind::ComboBox)
        ListNotified(notification);
    else if (mControl.Kind() == ControlKind::CommandButton && notification == BN_CLICKED)
        static_cast<CommandButton&>(mControl).Press();
}

// Each choice of the user, even of the same item, posts one `kChoiceMade` with the child's id to
// the form. An open list reports when it closes, not at every item that the arrow keys pass; a
// closed one at every arrow key. In both cases several messages can announce one choice.
void Win32ChildControl::ListNotified(UINT notification) {
    const bool open = SendMessageW(mWindow, CB_GETDROPPEDSTATE, 0, 0) != 0;
    if (notification == CBN_SELENDCANCEL) FollowList(static_cast<const ComboBox&>(mControl));
    if (notification != CBN_SELENDOK && (notification != CBN_SELCHANGE || open)) return;
    if (std::exchange(mChosen, true)) return;
    static_cast<void>(PostMessageW(GetAncestor(mWindow, GA_ROOT), kChoiceMade,
                                   static_cast<WPARAM>(GetDlgCtrlID(mWindow)), 0));
}

void Win32ChildControl::TakeChoice() {
    mChosen = false;
    const auto index = static_cast<int>(SendMessageW(mWindow, CB_GETCURSEL, 0, 0));
    static_cast<ComboBox&>(mControl).Choose(index);
}

// Each panel is as wide as its text; the last one takes the remaining width.
void Win32ChildControl::FollowPanels(const StatusBar& bar) {
    std::vector<std::wstring> texts;
    std::vector<int> edges;
    for (const StatusBar::Panel& panel : bar.Panels()) {
        texts.push_back(ToWide(panel.text));
        edges.push_back((edges.empty() ? 0 : edges.back()) + PanelWidth(texts.back()));
    }
    if (edges.empty()) return;
    edges.back() = -1;
    SendMessageW(mWindow, SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
    for (std::size_t i = 0; i < texts.size(); ++i)
        SendMessageW(mWindow, SB_SETTEXTW, i, reinterpret_cast<LPARAM>(texts[i].c_str()));
}

int Win32ChildControl::PanelWidth(const std::wstring& text) const {
    constexpr float kLeastTwips = 1800;
    constexpr float kMarginTwips = 300;
    const SIZE size = Extent(mContext.Font(mRow.style.points, mRow.style.bold), text);
    return std::max(mContext.ToPixels(kLeastTwips),
                    static_cast<int>(size.cx) + mContext.ToPixels(kMarginTwips));
}

SIZE Win32ChildControl::Extent(HFONT font, const std::wstring& text) const {
    const HDC target = GetDC(mWindow);
    const HGDIOBJ before = SelectObject(target, font);
    SIZE size{};
    static_cast<void>(
        GetTextExtentPoint32W(target, text.c_str(), static_cast<int>(text.size()), &size));
    static_cast<void>(SelectObject(target, before));
    static_cast<void>(ReleaseDC(mWindow, target));
    return size;
}

Size Win32ChildControl::TextSize(const std::string& face, const std::string& text) const {
    const SIZE size = Extent(mContext.Font(mRow.style.points, mRow.style.bold, face), ToWide(text));
    return {mContext.ToTwips(size.cx), mContext.ToTwips(size.cy)};
}

// The window text is what a screen reader reads.
void Win32ChildControl::FollowPrinted(const PictureBox& box) {
    std::wstring all;
    for (const PictureBox::Printed& printed : box.PrintedTexts())
        all += (all.empty() ? L"" : L"\r\n") + ToWide(printed.text);
    if (box.SpokenName().empty()) static_cast<void>(SetWindowTextW(mWindow, all.c_str()));
    static_cast<void>(InvalidateRect(mWindow, nullptr, TRUE));
}

// Raised only above overlapping windows, because the z-order is also the tab order.
void Win32ChildControl::BringToFront() {
    RECT own{};
    if (GetWindowRect(mWindow, &own) == 0) return;
    for (HWND each = GetWindow(mWindow, GW_HWNDFIRST); each != nullptr && each != mWindow;
         each = GetWindow(each, GW_HWNDNEXT)) {
        RECT other{};
        RECT shared{};
        if (GetWindowRect(each, &other) == 0 || IntersectRect(&shared, &own, &other) == 0) continue;
        const HWND before = GetWindow(each, GW_HWNDPREV);
        static_cast<void>(SetWindowPos(mWindow, before == nullptr ? HWND_TOP : before, 0, 0, 0, 0,
                                       SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE));
        return;
    }
}

void Win32ChildControl::Notified(const NMHDR& header) {
    if (mTree != nullptr)
        mTree->Notified(header);
    else if (mControl.Kind() == ControlKind::ListView && header.code == NM_CLICK)
        static_cast<ListView&>(mControl).Choose(SelectedRow());
}

int Win32ChildControl::SelectedRow() const {
    return static_cast<int>(
        SendMessageW(mWindow, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void Win32ChildControl::KeepToBottom() {
    SendMessageW(mWindow, WM_SIZE, 0, 0);
    RECT outer{};
    if (GetWindowRect(mWindow, &outer) == 0) return;
    static_cast<void>(
        MapWindowPoints(nullptr, GetParent(mWindow), reinterpret_cast<POINT*>(&outer), 2));
    if (const Place place = mContext.ToTwips(outer); place != mControl.Place())
        mControl.Place(place);
}

void Win32ChildControl::InsertColumns() {
    constexpr float kColumnTwips = 1500;
    int at = 0;
    for (const std::string& title : static_cast<ListView&>(mControl).Columns()) {
        std::wstring text = ToWide(title);
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.pszText = text.data();
        column.cx = mContext.ToPixels(kColumnTwips);
        SendMessageW(mWindow, LVM_INSERTCOLUMNW, static_cast<WPARAM>(at++),
                     reinterpret_cast<LPARAM>(&column));
    }
}

}  // namespace vantor
