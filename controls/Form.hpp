// Windows as plain objects: their controls, their life from load to unload, and the set of those
// that are open.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "controls/Control.hpp"
#include "platform/Peers.hpp"

namespace vantor {

class MessagePump;

enum class WindowState : std::uint8_t { Normal = 0, Minimised = 1, Maximised = 2 };

/// What a panel shows where nothing else is on it.
enum class Ground : std::uint8_t {
    Plain,
    Banner,      ///< the built-in promotional picture
    CaptionBar,  ///< the colours of an active window's title
};

/// What is special about a control's looks, its place among the keys, or how it is read aloud.
struct ControlStyle {
    float points = 9;       ///< size of its letters
    const char* face = "";  ///< their shape; empty for that of the window
    bool bold = false;
    bool centred = false;        ///< of a label's text
    bool defaultButton = false;  ///< pressed by Enter
    bool cancelButton = false;   ///< pressed by Esc
    /// Has the focus when the window opens, and Tab never stops on it.
    bool holdsFocus = false;
    bool clickable = false;  ///< of a panel: a button for the mouse and for the keyboard
    Ground ground = Ground::Plain;
    /// Number of the text that is read aloud for a control which shows none; 0 where it does, or
    /// where the label in the row before tells what it is.
    std::int32_t spokenName = 0;
};

/// One control of a window's design.
struct ControlDesign {
    ControlKind kind;
    const char* name;
    int index;           ///< -1 for a single control
    const char* parent;  ///< name of the panel or menu it lies in, empty for the window itself
    Place place;         ///< twips, within the parent; all 0 for what has no place of its own
    const char* caption;
    const char* tag;
    ControlStyle style = {};
};

/// A window's design: data that says what the window looks like before any code runs.
struct FormDesign {
    const char* name;
    const char* caption;
    const char* tag;
    Place place;  ///< outer size in twips
    std::span<const ControlDesign> controls;
    Size smallest = {};  ///< least outer size of a sizable window; none for a fixed one
};

/// The open windows of the program, and what they need to be drawn.
class Desktop {
public:
    Desktop(Peers& peers, MessagePump& pump) : mPeers(peers), mPump(pump) {}

    Peers& GetPeers() const { return mPeers; }
    MessagePump& Pump() const { return mPump; }

    /// The loaded windows, in the order in which they were loaded.
    const std::vector<std::shared_ptr<Form>>& OpenForms() const { return mOpen; }

    /// What the help key does in each of them; its argument is the window that has it.
    std::function<void(const Form&)> Help = [](const Form&) {};

private:
    friend class Form;
    Peers& mPeers;
    MessagePump& mPump;
    std::vector<std::shared_ptr<Form>> mOpen;
};

/// A window. Made with std::make_shared; the desktop keeps it alive while it is loaded, and an
/// event keeps it alive until its outermost handler has returned, so code may unload the window
/// that it belongs to. Once it is gone nothing is drawn any more and it cannot be loaded again.
class Form : public std::enable_shared_from_this<Form> {
public:
    Form(Desktop& desktop, const FormDesign& design);
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    std::string Name() const { return mDesign.name; }
    /// The controls in collection order: the order in which the class declares them.
    const std::vector<Control*>& Controls() const { return mControls; }
    const FormDesign& Design() const { return mDesign; }
    /// The control of a design row. Raises RuntimeError 51 when the class has none.
    Control& ControlOf(const ControlDesign& row) const;

    const std::string& Tag() const { return mTag; }
    const std::string& Caption() const { return mCaption; }
    void Caption(std::string caption);

    /// Outer position and size in twips.
    const vantor::Place& Place() const { return mPlace; }
    void Place(const vantor::Place& place);

    /// Moves the window to the middle of `area` (twips of the screen), its size unchanged.
    void CenterIn(const vantor::Place& area);

    /// Moves the window to the middle of `other`; while `other` is minimised, of the place that it
    /// is restored to. The window stays within the work area of the monitor there.
    void CenterOn(const Form& other);

    WindowState State() const { return mState; }
    void State(WindowState state);

    /// Size of the inside, which controls can be laid out in.
    const Size& InnerSize() const { return mInner; }

    bool Visible() const { return mVisible; }
    bool Loaded() const { return mLoaded; }
    /// True once the window has been unloaded. A wait that runs in its code ends then.
    bool Gone() const { return mGone; }

    /// Applies the design, makes the peer and runs Form_Load; a second call does nothing.
    /// Raises RuntimeError 51 when the design and the class disagree about the controls.
    void Load();

    /// Loads the window if needed and shows it; a modal one returns when it has closed.
    void Show(ShowMode mode = ShowMode::Modeless, const Form* owner = nullptr);

    /// Closes the window: asks Form_QueryUnload and, when that lets it, runs Form_Unload and
    /// destroys the peer. The last window to go ends the message pump. True when it is gone.
    bool Unload();

    /// For peers: the window is now there and so large. Runs Form_Resize when the inside has
    /// another size than before.
    void Placed(const vantor::Place& outer, WindowState state, const Size& inner);

    /// For peers: the inside is to be drawn again, which Form_Paint does with DrawLine.
    void Painting() { Form_Paint(); }

    /// For peers: the help key was pressed.
    void HelpWanted() { mDesktop.Help(*this); }

    Desktop& GetDesktop() const { return mDesktop; }

    /// The native window, 0 where nothing is drawn.
    NativeWindow Handle() const { return mPeer ? mPeer->Handle() : 0; }

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
    void Join(Control& control) { mControls.push_back(&control); }
    void ControlChanged(const Control& control, Property property);
    Size TextSize(const Control& control, const std::string& face, const std::string& text) const;
    void FormChanged(Property property);
    void ApplyDesign();

    Desktop& mDesktop;
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
