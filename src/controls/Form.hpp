// Platform-independent windows: their controls, their lifetime from load to unload,
// and the set of open ones.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "controls/Control.hpp"
#include "platform/Peers.hpp"
#include "resources/texts/Str.hpp"

namespace vantor {

class MessagePump;

enum class WindowState : std::uint8_t { Normal = 0, Minimised = 1, Maximised = 2 };

/// The background of a panel.
enum class Ground : std::uint8_t {
    Plain,
    Banner,      ///< the built-in promotional picture
    CaptionBar,  ///< the colours of an active window's title
};

/// Deviations of a control from the default appearance, keyboard behaviour or accessible name.
struct ControlStyle {
    float points = 9;       ///< font size
    const char* face = "";  ///< typeface; empty for that of the window
    bool bold = false;
    bool centred = false;        ///< of a label's text
    bool verbatim = false;       ///< of a label's text: "&" is literal, overflow is an ellipsis
    bool defaultButton = false;  ///< pressed by Enter
    bool cancelButton = false;   ///< pressed by Esc
    /// Has the initial focus; not a tab stop.
    bool holdsFocus = false;
    bool clickable = false;  ///< of a panel: a button for the mouse and for the keyboard
    bool editable = false;   ///< of a combo box: takes any text; its list is the history
    Ground ground = Ground::Plain;
    /// The accessible name of a control that shows no text and follows no label, or whose text is
    /// its value.
    Str spokenName = Str::None;
};

/// One control of a window's design.
struct ControlDesign {
    ControlKind kind;
    const char* name;
    int index;           ///< kSingle for a single control
    const char* parent;  ///< name of the containing panel or menu, empty for the window itself
    Place place;         ///< twips, within the parent; all 0 for controls without a position
    const char* caption;
    const char* tag;
    ControlStyle style = {};
};

/// A window's design: its appearance as data, before any code runs.
struct FormDesign {
    const char* name;
    const char* caption;
    const char* tag;
    Place place;  ///< outer size in twips
    std::span<const ControlDesign> controls;
    Size smallest = {};  ///< minimum outer size of a sizable window; all 0 for a fixed one
};

/// The open windows of the program, and the services that they need.
class WindowManager {
public:
    WindowManager(Peers& peers, MessagePump& pump) : mPeers(peers), mPump(pump) {}

    Peers& GetPeers() const { return mPeers; }

    /// The loaded windows, in load order.
    const std::vector<std::shared_ptr<Form>>& OpenForms() const { return mOpen; }

    /// Handles the help key for all windows; the argument is the active one.
    std::function<void(const Form&)> Help = [](const Form&) {};

private:
    friend class Form;
    Peers& mPeers;
    MessagePump& mPump;
    std::vector<std::shared_ptr<Form>> mOpen;
};

/// A window. Created with std::make_shared. The window manager keeps it alive while it is loaded,
/// and an event keeps it alive until its outermost handler has returned, so code may unload its own
/// window. Once unloaded, it is not drawn any more and cannot be loaded again.
class Form : public std::enable_shared_from_this<Form> {
public:
    Form(WindowManager& manager, const FormDesign& design);
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    std::string Name() const { return mDesign.name; }
    /// The controls in collection order: the order of declaration in the class.
    const std::vector<Control*>& Controls() const { return mControls; }
    const FormDesign& Design() const { return mDesign; }
    /// The control of a design row. Raises RuntimeError 51 when the class has none.
    Control& ControlOf(const ControlDesign& row) const;

    const std::string& Tag() const { return mTag; }
    const std::string& Caption() const { return mCaption; }
    void Caption(const std::string& caption) { Set(mCaption, caption, Property::Caption); }

    /// Outer position and size in twips.
    const vantor::Place& Place() const { return mPlace; }
    void Place(const vantor::Place& place) { Set(mPlace, place, Property::Place); }

    /// Centres the window in `area` (twips of the screen) without changing its size.
    void CenterIn(const vantor::Place& area);

    /// Centres the window on `other`, or on its restored position when `other` is minimised.
    /// The result is clamped to the work area of that monitor.
    void CenterOn(const Form& other);

    WindowState State() const { return mState; }
    void State(WindowState state) { Set(mState, state, Property::State); }

    /// Size of the client area.
    const Size& InnerSize() const { return mInner; }

    bool Visible() const { return mVisible; }
    bool Loaded() const { return mLoaded; }
    /// True once the window has been unloaded. Wait loops in its code must then end.
    bool Gone() const { return mGone; }

    /// Applies the design, makes the peer and runs Form_Load; a second call does nothing.
    /// Raises RuntimeError 51 when the design and the class disagree about the controls, and what
    /// the peer or Form_Load raises. The window is then unloaded, without Form_Unload.
    void Load();

    /// Loads the window if needed and shows it; a modal one returns when it is closed.
    void Show(ShowMode mode = ShowMode::Modeless, const Form* owner = nullptr);

    /// Closes the window: calls Form_QueryUnload and, unless it refuses, Form_Unload, and destroys
    /// the peer. The last window to unload ends the message pump. True when unloaded.
    bool Unload();

    /// For peers: reports position and size. Runs Form_Resize when the size of
    /// the client area has changed.
    void Placed(const vantor::Place& outer, WindowState state, const Size& inner);

    /// For peers: repaint the client area. Form_Paint does so with DrawLine.
    void Painting() { Form_Paint(); }

    /// For peers: the help key was pressed.
    void HelpWanted() { mManager.Help(*this); }

    WindowManager& Manager() const { return mManager; }

    /// The window handle; 0 where nothing is drawn.
    NativeWindow WindowHandle() const { return mPeer ? mPeer->WindowHandle() : 0; }

protected:
    virtual void Form_Load() {}
    /// False refuses the close.
    virtual bool Form_QueryUnload() { return true; }
    virtual void Form_Unload() {}
    virtual void Form_Resize() {}
    virtual void Form_Paint() {}

    void DrawLine(const ThinLine& line);

private:
    friend class Control;
    template <typename Value>
    void Set(Value& member, const Value& value, Property property) {
        member = value;
        if (mPeer) mPeer->FormChanged(property);
    }
    void ApplyDesign();
    /// Removes the window from the window manager. The caller keeps the object alive.
    void Leave();

    WindowManager& mManager;
    const FormDesign& mDesign;
    std::vector<Control*> mControls;
    std::unique_ptr<FormPeer> mPeer;
    std::string mTag;
    std::string mCaption;
    vantor::Place mPlace;
    Size mInner;
    WindowState mState = WindowState::Normal;
    bool mLoaded = false;
    bool mVisible = false;
    bool mUnloading = false;
    bool mGone = false;
};

}  // namespace vantor
