// One control as a child window: created from its model and kept in sync with it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

class ComboBox;
class PictureBox;
class StatusBar;
class Win32TerminalView;
class Win32TreeView;

/// Identifiers of child windows start here, in collection order.
inline constexpr int kFirstChildId = 1000;

/// Posted by a list to its form: the user has made a choice.
inline constexpr UINT kChoiceMade = WM_APP + 1;

/// True for the kinds that have a window of their own.
bool HasWindow(ControlKind kind);

/// The window class of panels and pictures. Registered by the first form window.
inline constexpr wchar_t kPanelClass[] = L"VantorPanel";

class Win32ChildControl {
public:
    /// Creates the child window of `control` in `parent`, with `id`, from its design row. Raises
    /// RuntimeError 7 when the system cannot create it.
    Win32ChildControl(Win32Context& context, Control& control, const ControlDesign& row,
                      HWND parent, int id);
    Win32ChildControl(const Win32ChildControl&) = delete;
    Win32ChildControl& operator=(const Win32ChildControl&) = delete;
    /// The window is destroyed with its parent; only the count is updated here.
    ~Win32ChildControl();

    Control& Model() const { return mControl; }
    const ControlDesign& Row() const { return mRow; }
    HWND Window() const { return mWindow; }

    void Follow(Property property);
    /// Applies what `FollowLater` deferred.
    void CatchUp();
    /// True for properties that a session sets with every line: the message loop shows them while
    /// the line is being transmitted, not in the gap between two lines.
    bool FollowLater(Property property);

    /// Must be called before the window is destroyed.
    void ForgetSpokenName();

    /// A status bar moves itself to the bottom edge of its window; its model gets the height.
    void KeepToBottom();
    /// Handles a WM_COMMAND notification of the window. The handler of the model's event may unload
    /// the form and destroy this object during the call; so may the next two.
    void Commanded(UINT notification);
    /// Takes the choice that a drop-down list has posted.
    void TakeChoice();
    /// Handles a WM_NOTIFY notification of the window.
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

    Win32Context& mContext;
    Control& mControl;
    const ControlDesign& mRow;
    HWND mWindow = nullptr;
    std::shared_ptr<Win32TerminalView> mTerminal;  // of a terminal only
    std::unique_ptr<Win32TreeView> mTree;          // of a tree only
    std::vector<std::string> mListed;              // the items that a list shows
    std::string mShownCaption;
    bool mLate = false;    // caption or value may differ from what is shown
    bool mChosen = false;  // a choice is posted to the form
};

}  // namespace vantor
