// The window of one form: its children, its menu bar, and the routing of window messages to
// the model. Handlers may unload the form; the window object then outlives its current message.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"
#include "platform/win32/windows/Win32ChildControl.hpp"
#include "platform/win32/windows/Win32MenuBar.hpp"

namespace vantor {

class Win32FormWindow : public std::enable_shared_from_this<Win32FormWindow> {
public:
    Win32FormWindow(Win32Context& context, Form& form);
    ~Win32FormWindow() { Destroy(); }
    Win32FormWindow(const Win32FormWindow&) = delete;
    Win32FormWindow& operator=(const Win32FormWindow&) = delete;

    /// Creates the window hidden and centred on the screen, where a window first shown minimised or
    /// maximised is restored to. Raises RuntimeError 7 when the system cannot create it.
    void Create();
    /// Destroys the window; the model is not accessed afterwards.
    void Destroy();

    HWND WindowHandle() const { return mWindow; }
    void Show(HWND owner);
    void FollowForm(Property property);
    void FollowControl(const Control& control, Property property);
    Place NormalPlace() const;
    void DrawLine(const ThinLine& line) const;
    Size TextSize(const Control& control, const std::string& face, const std::string& text) const;

private:
    static LRESULT CALLBACK OnFormMessage(HWND window, UINT message, WPARAM first, LPARAM second);
    static LRESULT CALLBACK OnPanelMessage(HWND window, UINT message, WPARAM first, LPARAM second);
    static void RegisterClasses(HINSTANCE instance);

    LRESULT Dispatch(UINT message, WPARAM first, LPARAM second);
    void OnCommand(UINT id, UINT notification);
    void OnDefaultKey(UINT id);
    void OnNotify(const NMHDR& header);
    void OnPlaced();
    void OnPaint();
    void OnActivate(bool active);
    void OnSmallest(MINMAXINFO& limits) const;
    bool MayEndSession();
    LRESULT DefaultButton() const;
    LRESULT HandlePanel(HWND panel, UINT message, WPARAM first, LPARAM second);
    std::optional<LRESULT> HandlePicture(const Win32ChildControl& picture, UINT message,
                                         WPARAM first, LPARAM second);
    static void Click(const Win32ChildControl& picture);
    bool PaintPanel(const Win32ChildControl& panel, HDC target) const;

    void CreateChildren();
    void CreateToolTips();
    void FollowToolTip(const Win32ChildControl& child);
    void MoveWindowToModel();
    void CatchUpSoon();
    void CatchUp();
    void KeepFocusUsable();
    HWND FirstFocus() const;
    HWND ParentFor(const ControlDesign& row) const;
    Win32ChildControl* Find(const Control& control) const;
    Win32ChildControl* FindId(int id) const;
    bool IsSizable() const { return mForm->Design().smallest.width > 0; }
    RECT FirstPlace() const;

    Win32Context& mContext;
    Form* mForm;  // null once destroyed
    HWND mWindow = nullptr;
    HWND mToolTips = nullptr;
    HWND mFocus = nullptr;    // the child that had the focus when the window was left
    HWND mPressed = nullptr;  // the picture on which the mouse button went down
    std::unique_ptr<Win32MenuBar> mMenuBar;
    std::vector<std::unique_ptr<Win32ChildControl>> mChildren;
    HDC mTarget = nullptr;     // while the form paints itself
    bool mCatchingUp = false;  // a kCatchUp message is posted
    bool mMoving = false;      // the model moves the window: do not notify it
};

}  // namespace vantor
