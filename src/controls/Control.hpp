// What all controls of a form have in common. Controls are platform-independent: a peer draws them,
// and everything works without one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Peers.hpp"

namespace vantor {

class Form;

enum class ControlKind : std::uint8_t {
    Label,
    CommandButton,
    ComboBox,
    PictureBox,
    Icon,
    ProgressBar,
    ListView,
    TreeView,
    StatusBar,
    MenuItem,
    Terminal,
};

/// The index of a control that belongs to no control array.
inline constexpr int kSingle = -1;
/// No item, row or node: nothing is selected, or it was not found.
inline constexpr int kNothing = -1;

/// The edge around a control.
enum class Border : std::uint8_t { None, Static, Sunken };

/// A control of a form. It adds itself to the form's collection on construction; it is a member of
/// the form, so it never outlives it. Setting a property notifies the form's peer.
class Control {
public:
    /// `index` distinguishes the members of a control array; kSingle for a single control.
    Control(Form& parent, ControlKind kind, std::string name, int index = kSingle);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    Form& Parent() const { return mParent; }
    ControlKind Kind() const { return mKind; }
    const std::string& Name() const { return mName; }
    int Index() const { return mIndex; }

    const std::string& Tag() const { return mTag; }
    void Tag(std::string tag) { mTag = std::move(tag); }

    const std::string& Caption() const { return mCaption; }
    void Caption(const std::string& caption) { Set(mCaption, caption, Property::Caption); }

    bool Enabled() const { return mEnabled; }
    void Enabled(bool enabled);

    bool Visible() const { return mVisible; }
    void Visible(bool visible);

    const std::string& ToolTip() const { return mToolTip; }
    void ToolTip(const std::string& toolTip) { Set(mToolTip, toolTip, Property::ToolTip); }

    /// The accessible name of a control that shows no text.
    const std::string& SpokenName() const { return mSpokenName; }
    void SpokenName(const std::string& name) { Set(mSpokenName, name, Property::SpokenName); }

    const vantor::Place& Place() const { return mPlace; }
    void Place(const vantor::Place& place) { Set(mPlace, place, Property::Place); }

    /// The border is drawn inside the control's place: nothing moves.
    vantor::Border Border() const { return mBorder; }
    void Border(vantor::Border border) { Set(mBorder, border, Property::Border); }

    /// Brings the control in front of the controls that it overlaps.
    void ZOrder() { Changed(Property::ZOrder); }

    /// Draws the control at once, without waiting for the message loop.
    void Refresh() { Changed(Property::Repaint); }

protected:
    void Changed(Property property);
    template <typename Value>
    void Set(Value& member, const Value& value, Property property) {
        member = value;
        Changed(property);
    }
    /// Size of `text` in the control's font, in the typeface `face` if not empty.
    /// All 0 where nothing is drawn.
    Size TextSize(const std::string& face, const std::string& text) const;
    /// Outer size of a terminal that shows so many cells. All 0 where nothing is drawn.
    Size TerminalSize(int columns, int rows) const;
    /// Keeps the form alive while one of its handlers runs; for owners of events.
    std::shared_ptr<void> KeepParent() const;

private:
    Form& mParent;
    ControlKind mKind;
    std::string mName;
    int mIndex;
    std::string mTag;
    std::string mCaption;
    std::string mToolTip;
    std::string mSpokenName;
    vantor::Place mPlace;
    vantor::Border mBorder = vantor::Border::None;
    bool mEnabled = true;
    bool mVisible = true;
};

/// A control of one kind, based on a class with the constructor of `Control`.
template <ControlKind Kind, typename Base = Control>
class OfKind : public Base {
public:
    explicit OfKind(Form& parent, std::string name, int index = kSingle)
        : Base(parent, Kind, std::move(name), index) {}
};

}  // namespace vantor
