// Translating a window in place.
#pragma once

#include <cstdint>

namespace vantor {

class Form;
class StringTable;

/// Which of a window's parts `TranslateForm` looks at.
enum class Translate : std::uint8_t { All, WithoutMenusAndTitle };

/// Replaces every annotated caption of `form` by its text: menu entries whose caption begins with
/// a number other than 0, labels and buttons with a tag, then the title when the window has a
/// tag. An entry without a number keeps its design text; a tag that is not a number raises 13,
/// an unknown number 326. What was set before an error stays set.
void TranslateForm(Form& form, const StringTable& strings, Translate what = Translate::All);

/// The common LoadResources procedure of the windows: TranslateForm, errors reported under the
/// window's name.
void LoadResources(Form& form, const StringTable& strings, Translate what = Translate::All);

}  // namespace vantor
