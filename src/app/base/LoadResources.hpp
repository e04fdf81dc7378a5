// Translates a window at run time.
#pragma once

#include <cstdint>

namespace vantor {

class Form;
class StringTable;

/// The parts of a window that `TranslateForm` translates.
enum class Translate : std::uint8_t { All, WithoutMenusAndTitle };

/// Replaces captions of `form` with text from the string table: menu entries whose caption begins
/// with a non-zero number, labels and buttons with a tag, then the title if the window has a tag.
/// An entry without a number keeps its design text. A tag that is not a number raises 13,
/// an unknown number 326; replacements made before an error are kept.
void TranslateForm(Form& form, const StringTable& strings, Translate what = Translate::All);

/// The LoadResources procedure of all windows: calls TranslateForm and reports errors
/// under the window's name.
void LoadResources(Form& form, const StringTable& strings, Translate what = Translate::All);

}  // namespace vantor
