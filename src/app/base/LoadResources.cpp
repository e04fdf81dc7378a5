#include "app/base/LoadResources.hpp"

#include <string>

#include "controls/Form.hpp"
#include "platform/StringTable.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

bool TakesCaption(ControlKind kind) {
    return kind == ControlKind::Label || kind == ControlKind::CommandButton;
}

void TranslateMenuItem(Control& item, const StringTable& strings) {
    const std::int32_t id = ToInt32(LeadingNumber(item.Caption()));
    if (id != 0) item.Caption(strings.LoadResString(id));
}

}  // namespace

void TranslateForm(Form& form, const StringTable& strings, Translate what) {
    for (Control* control : form.Controls()) {
        if (control->Kind() == ControlKind::MenuItem) {
            if (what == Translate::All) TranslateMenuItem(*control, strings);
        } else if (!control->Tag().empty() && TakesCaption(control->Kind())) {
            control->Caption(strings.LoadResString(ToInt32(control->Tag())));
        }
    }
    for (const ControlDesign& row : form.Design().controls)
        if (row.style.spokenName != Str::None)
            form.ControlOf(row).SpokenName(strings.Text(row.style.spokenName));
    if (what == Translate::All && !form.Tag().empty())
        form.Caption(strings.LoadResString(ToInt16(form.Tag())));
}

void LoadResources(Form& form, const StringTable& strings, Translate what) {
    Trapped(form.Name() + ".LoadResources", [&] { TranslateForm(form, strings, what); });
}

}  // namespace vantor
