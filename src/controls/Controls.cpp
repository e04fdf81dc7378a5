#include "controls/Controls.hpp"

#include <algorithm>
#include <utility>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

void ProgressBar::Value(std::int16_t value) {
    if (value < 0 || value > 100) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    Set(mValue, value, Property::Value);
}

void PictureBox::Cls() {
    mPrinted.clear();
    CurrentX = 0;
    CurrentY = 0;
    Changed(Property::Value);
}

void PictureBox::Print(const std::string& text) {
    mPrinted.push_back({CurrentX, CurrentY, FontName, text});
    CurrentX = 0;
    CurrentY += TextHeight(text);
    Changed(Property::Value);
}

void ComboBox::Items(std::vector<std::string> items) {
    mItems = std::move(items);
    mText.clear();
    mListIndex = kNothing;
    Changed(Property::Value);
}

void ComboBox::ListIndex(int index) {
    if (index < -1 || index >= static_cast<int>(mItems.size()))
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    mText = index < 0 ? std::string() : mItems[static_cast<std::size_t>(index)];
    Set(mListIndex, index, Property::Value);
}

void ComboBox::Text(const std::string& text) {
    mListIndex = kNothing;
    Set(mText, text, Property::Value);
}

void ComboBox::Choose(int index) {
    if (index < 0) return;
    ListIndex(index);
    Click.Raise();
}

void ListView::Choose(int row) {
    mSelectedRow = row;
    Press();
}

void Remember(ComboBox& combo, std::vector<std::string>& history) {
    constexpr std::size_t kMost = 20;
    const std::string text = combo.Text();
    if (text.empty() || (!history.empty() && history.front() == text)) return;
    std::erase(history, text);
    history.insert(history.begin(), text);
    if (history.size() > kMost) history.resize(kMost);
    combo.Items(history);
    combo.ListIndex(0);  // selects the text, so that typing replaces it
}

int FindStringComboBox(const ComboBox& combo, const std::string& text) {
    const auto found = std::ranges::find(combo.Items(), text);
    return found == combo.Items().end() ? kNothing
                                        : static_cast<int>(found - combo.Items().begin());
}

StatusBar::StatusBar(Form& parent, std::string name, const std::vector<std::string>& keys)
    : Control(parent, ControlKind::StatusBar, std::move(name)) {
    for (const std::string& key : keys) mPanels.push_back({key, {}});
}

void StatusBar::PanelText(const std::string& key, const std::string& text) {
    const auto panel = std::ranges::find(mPanels, key, &Panel::key);
    if (panel == mPanels.end()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    Set(panel->text, text, Property::Value);
}

}  // namespace vantor
