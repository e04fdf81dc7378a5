// One control as a child window: made from its model, and kept in step with it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "controls/Form.hpp"
#include "platform/win32/Win32Stage.hpp"

namespace vantor {

class ComboBox;
class PictureBox;
class StatusBar;
class Win32TerminalView;
class Win32TreeView;

/// Identifiers of child windows count from here, in collection order.
inline constexpr int kFirstChildId = 1000;

/// What a list posts to its form: its user has chosen.
inline constexpr UINT kChoiceMade = WM_APP + 1;

/// True for the kinds that have a window of their own.
bool HasWindow(ControlKind kind);

/// The window class of panels and pictures. Registered by the first form window.
inline constexpr wchar_t kPanelClass[] = L"VantorPanel";

class Win32ChildControl {
public:
    /// Makes the child window of `control` in `parent`, with `id`, as its design row says. Raises
    /// RuntimeError 7 when the system cannot make it.
    Win32ChildControl(Win32Stage& stage, Control& control, const ControlDesign& row, HWND parent,
                      int id);
    Win32ChildControl(const Win32ChildControl&) = delete;
    Win32ChildControl& operator=(const Win32ChildControl&) = delete;
    /// The window goes with its parent; only the count is kept here.
    ~Win32ChildControl();

    Control& Model() const { return mControl; }
    const ControlDesign& Row() const { return mRow; }
    HWND Window() const { return mWindow; }

    void Follow(Property property);
    /// Shows what `FollowLater` has put off.
    void CatchUp();
    /// True for what a session sets with every line: it is shown by the message loop, while the
    /// line is on the wire, and not in the pause between two lines.
    bool FollowLater(Property property);

    /// Before the window is destroyed.
    void ForgetSpokenName();

    /// A status bar moves itself to its window's bottom edge; its model learns the height.
    void KeepToBottom();
    /// The system's window says what its user does (WM_COMMAND). The handler of the model's event
    /// may unload the form: this object may be gone when the call returns, as after the next two.
    void Commanded(UINT notification);
    /// Takes the choice that a drop-down list has posted.
    void TakeChoice();
    /// The system's window says what its user does (WM_NOTIFY).
    void Notified(const NMHDR& header);
    /// Size of a text printed on the control.
    Size TextSize(const std::string& face, const std::string& text) const;

private:
    RECT OuterPlace() const;
    void FollowCaption();
    void FollowSpokenName();
    void FollowBorder();
    void FollowValue();
    void FollowList(const ComboBox& combo);
    void ListNotified(UINT notification);
    void FollowPanels(const StatusBar& bar);
    int PanelWidth(const std::wstring& text) const;
    void FollowPrinted(const PictureBox& box);
    void BringToFront();
    SIZE Extent(HFONT font, const std::wstring& text) const;
    void InsertColumns();
    int SelectedRow() const;

    Win32Stage& mStage;
    Control& mControl;
    const ControlDesign& mRow;
    HWND mWindow = nullptr;
    std::shared_ptr<Win32TerminalView> mTerminal;  // of a terminal alone
    std::unique_ptr<Win32TreeView> mTree;          // of a tree alone
    std::vector<std::string> mListed;              // the items that a list shows
    std::string mShownCaption;
    bool mLate = false;    // caption or value may differ from what is shown
    bool mChosen = false;  // a choice is on its way to the form
};

}  // namespace vantor
