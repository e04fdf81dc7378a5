// One control as a child window, kept in sync with its model: what all kinds have in common. Each
// kind is a class of its own, in Win32ChildKinds.cpp or in a file of its own.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

/// Identifiers of child windows start here, in collection order.
inline constexpr int kFirstChildId = 1000;

/// Posted by a list to its form: the user has made a choice.
inline constexpr UINT kChoiceMade = WM_APP + 1;

/// The window class of panels and pictures. Registered by the first form window.
inline constexpr wchar_t kPanelClass[] = L"VantorPanel";

/// The native window of a kind.
struct NativeKind {
    const wchar_t* windowClass;
    DWORD style;
    DWORD extendedStyle = 0;
    /// A property that a session sets with every line: the message loop shows it while the line is
    /// being transmitted, not in the gap between two lines.
    std::optional<Property> deferred = std::nullopt;
};

/// What a child window is made from.
struct ChildSource {
    Win32Context& context;
    Control& control;
    const ControlStyle& style;
};

class Win32ChildControl {
public:
    Win32ChildControl(const ChildSource& source, const NativeKind& native);
    Win32ChildControl(const Win32ChildControl&) = delete;
    Win32ChildControl& operator=(const Win32ChildControl&) = delete;
    /// The window is destroyed with its parent.
    virtual ~Win32ChildControl() { --mContext.held.windows; }

    /// Creates the window in `parent` with `id`; called once, and before every other function.
    /// Raises RuntimeError 7 when the system cannot create it.
    void Create(HWND parent, int id);

    Control& Model() const { return mControl; }
    const ControlStyle& Style() const { return mStyle; }
    HWND Window() const { return mWindow; }

    virtual void Follow(Property property);
    /// True for properties that wait for `CatchUp`.
    bool FollowLater(Property property);
    /// Applies what `FollowLater` deferred.
    void CatchUp();

    /// Must be called before the window is destroyed.
    void ForgetSpokenName();

    /// The size of the parent has changed.
    virtual void ParentResized() {}
    /// The user begins or ends sizing the parent.
    virtual void ParentSizing(bool /*sizing*/) {}
    /// Handles a message of a panel, or one that the form passes on: notifications of the window
    /// (WM_COMMAND, WM_NOTIFY), and `kChoiceMade`. Empty for messages that DefWindowProc has to
    /// handle. The handler of the model's event may unload the form and destroy this object.
    virtual std::optional<LRESULT> OnMessage(UINT /*message*/, WPARAM, LPARAM) {
        return std::nullopt;
    }

    /// Size of a text in the control's font, in the typeface `face` if not empty.
    SIZE TextExtent(const std::wstring& text, const std::string& face = {}) const;
    /// Outer size in twips of a terminal with so many cells; all 0 for other kinds.
    virtual Size TerminalSize(int /*columns*/, int /*rows*/) const { return {}; }

protected:
    /// The model as the class that the kind of control has.
    template <typename ModelType>
    ModelType& ModelAs() const {
        return static_cast<ModelType&>(mControl);
    }
    /// Completes a new window.
    virtual void Created() {}
    virtual RECT OuterPlace() const { return mContext.ToPixels(mControl.Place()); }
    virtual void FollowValue() {}

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(mWindow, message, wParam, lParam);
    }
    LRESULT Send(UINT message, WPARAM wParam, const void* lParam) const {
        return Send(message, wParam, reinterpret_cast<LPARAM>(lParam));
    }

    Win32Context& mContext;

private:
    void FollowCaption();
    void FollowPlace();
    void FollowBorder();
    void BringToFront();

    Control& mControl;
    const ControlStyle& mStyle;
    NativeKind mNative;
    HWND mWindow = nullptr;
    std::string mShownCaption;
    bool mLate = false;  // caption or value may differ from what is shown
};

/// True when `window` is visible and enabled, as are the panels around it.
bool IsUsable(HWND window);

/// The child window of any control except a menu entry, in `parent` with `id`. Raises RuntimeError
/// 7 when the system cannot create it.
std::unique_ptr<Win32ChildControl> MakeChild(const ChildSource& source, HWND parent, int id);

// The kinds with files of their own.
std::unique_ptr<Win32ChildControl> MakePictureBox(const ChildSource& source);
std::unique_ptr<Win32ChildControl> MakeTreeView(const ChildSource& source);

}  // namespace vantor
