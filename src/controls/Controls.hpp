// The basic controls of the program's windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "controls/Control.hpp"
#include "controls/Event.hpp"
#include "platform/MessagePump.hpp"
#include "platform/Pictures.hpp"

namespace vantor {

using Label = OfKind<ControlKind::Label>;
/// Shows the program's icon.
using IconControl = OfKind<ControlKind::Icon>;

/// A control whose event is a click. Raised by a peer or by code through `Press`.
class ClickControl : public Control {
public:
    Event<> Click{[this] { return KeepParent(); }};

    /// A click, by the user or simulated. Ignored while the control is disabled.
    void Press() {
        if (Enabled()) Click.Raise();
    }

protected:
    using Control::Control;
};

using CommandButton = OfKind<ControlKind::CommandButton, ClickControl>;

/// A menu or menu entry. The caption "-" makes a separator.
class MenuItem : public OfKind<ControlKind::MenuItem, ClickControl> {
public:
    using OfKind::OfKind;

    /// A menu shows all of its entries.
    void Visible(bool) = delete;
};

/// A panel or a picture that can be printed on, and clicked when its design row says so.
class PictureBox : public OfKind<ControlKind::PictureBox, ClickControl> {
public:
    using OfKind::OfKind;

    /// A picture shown instead of the background of the design row, scaled to fit with its aspect
    /// ratio; null for the background.
    const std::shared_ptr<const Picture>& Loaded() const { return mLoaded; }
    void Loaded(const std::shared_ptr<const Picture>& loaded) {
        Set(mLoaded, loaded, Property::Repaint);
    }

    /// A printed text and its upper left corner in twips.
    struct Printed {
        float left = 0;
        float top = 0;
        std::string fontName;
        std::string text;

        friend bool operator==(const Printed&, const Printed&) = default;
    };
    const std::vector<Printed>& PrintedTexts() const { return mPrinted; }

    /// Removes the printed texts; the next one starts in the upper left corner.
    void Cls();
    /// Typeface of the texts printed from now on; empty for that of the window.
    std::string FontName;
    /// Position of the next text, in twips of the client area.
    float CurrentX = 0;
    float CurrentY = 0;
    /// Size of `text` in this font, in twips.
    float TextWidth(const std::string& text) const { return TextSize(FontName, text).width; }
    float TextHeight(const std::string& text) const { return TextSize(FontName, text).height; }
    /// Prints `text` and moves the position to the start of the next line.
    void Print(const std::string& text);

private:
    std::shared_ptr<const Picture> mLoaded;
    std::vector<Printed> mPrinted;
};

/// A progress bar from 0 to 100.
class ProgressBar : public OfKind<ControlKind::ProgressBar> {
public:
    using OfKind::OfKind;

    std::int16_t Value() const { return mValue; }
    /// Raises RuntimeError 380 outside 0 to 100.
    void Value(std::int16_t value);

private:
    std::int16_t mValue = 0;
};

/// A drop-down list. `Property::Value` reports new items and a changed selection or text. Whether
/// the user can type any other text is part of its design (`ControlStyle::editable`).
class ComboBox : public OfKind<ControlKind::ComboBox, ClickControl> {
public:
    using OfKind::OfKind;

    const std::vector<std::string>& Items() const { return mItems; }
    /// Replaces the list and clears the selection and the text.
    void Items(std::vector<std::string> items);

    /// The selected item, from 0; kNothing for none.
    int ListIndex() const { return mListIndex; }
    /// Raises RuntimeError 380 when there is no such item.
    void ListIndex(int index);
    /// The text of the selected item, or the one that was typed; empty for neither.
    const std::string& Text() const { return mText; }
    /// Of an editable one: sets the text, by code or as the user types it, and selects no item.
    void Text(const std::string& text);

    /// For peers: the user has selected an item. Raises the event after the change.
    /// Ignores negative values, with which systems report no selection.
    void Choose(int index);

private:
    std::vector<std::string> mItems;
    std::string mText;
    int mListIndex = kNothing;
};

/// Puts the text of an editable combo box at the top of `history`, which keeps the last 20 texts,
/// each of them once, and lists it. The text stays.
void Remember(ComboBox& combo, std::vector<std::string>& history);

/// Index of `text` in the list of `combo`, case-sensitive; kNothing when it is not found.
int FindStringComboBox(const ComboBox& combo, const std::string& text);

/// A status bar, docked at the bottom edge of its window: only the height of its place is used,
/// and a peer sets it to the drawn height. `Property::Value` reports a changed text.
class StatusBar : public Control {
public:
    struct Panel {
        std::string key;
        std::string text;
    };

    /// A bar with an empty panel for each of `keys`, in their order.
    StatusBar(Form& parent, std::string name, const std::vector<std::string>& keys);

    const std::vector<Panel>& Panels() const { return mPanels; }
    /// Sets the text of one panel. Raises RuntimeError 9 when no panel has the key.
    void PanelText(const std::string& key, const std::string& text);

private:
    std::vector<Panel> mPanels;
};

/// A list with columns and single selection. Rows are not implemented.
class ListView : public ClickControl {
public:
    ListView(Form& parent, std::string name, std::vector<std::string> columns)
        : ClickControl(parent, ControlKind::ListView, std::move(name), kSingle),
          mColumns(std::move(columns)) {}

    const std::vector<std::string>& Columns() const { return mColumns; }

    /// From 0; kNothing when nothing is selected.
    int SelectedRow() const { return mSelectedRow; }

    /// For peers: the user has clicked and thereby selected `row`. Raises the event.
    void Choose(int row);

private:
    std::vector<std::string> mColumns;
    int mSelectedRow = kNothing;
};

}  // namespace vantor
