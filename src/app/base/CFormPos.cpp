#include "app/base/CFormPos.hpp"

#include <array>
#include <cstdio>
#include <string_view>

#include "controls/Form.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

/// A single-precision number as decimal text.
std::string Decimal(float number) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.7g", static_cast<double>(number));
    return text.data();
}

/// Sets `quantity` to the number after `marker`; leaves it unchanged when the marker is missing.
void TakeNumber(std::string_view record, std::string_view marker, float& quantity) {
    const std::size_t at = record.find(marker);
    if (at == std::string_view::npos) return;
    const double number = LeadingNumber(record.substr(at + marker.size()));
    // Raises: a number beyond 32 bits would overflow in the arithmetic on positions.
    ToInt32(number);
    quantity = static_cast<float>(number);
}

}  // namespace

CFormPos::CFormPos(Registry& registry, const CodePage& codePage) : StoredTexts(registry, codePage) {
    BoxedSetup("Morvane.CFormPos.Class_Initialize", [this] { SubKey = "Positions"; });
}

vantor::Form& CFormPos::Window() const {
    if (!Form) throw RuntimeError(ErrorNumber::ObjectNotSet);
    return *Form;
}

void CFormPos::SaveForm() {
    Boxed("SaveForm", [this] {
        const vantor::Form& window = Window();
        const Place& place = window.Place();
        RegistrySetKeyValue(RootKey, KeyPath(), window.Name(),
                            "L=" + Decimal(place.left) + ";T=" + Decimal(place.top) +
                                ";W=" + Decimal(place.width) + ";H=" + Decimal(place.height) +
                                ";S=" + std::to_string(static_cast<int>(window.State())) + ";");
    });
}

bool CFormPos::RestoreForm(bool keepOnScreen) {
    bool restored = false;
    Boxed("RestoreForm", [&] {
        const std::string record = RegistryGetKeyValue(RootKey, KeyPath(), Window().Name());
        if (record.empty()) return;
        Apply(record, keepOnScreen);
        restored = true;
    });
    return restored;
}

void CFormPos::Apply(const std::string& record, bool keepOnScreen) {
    Place place = Form->Place();
    auto state = static_cast<float>(Form->State());
    TakeNumber(record, "L=", place.left);
    TakeNumber(record, "T=", place.top);
    TakeNumber(record, "W=", place.width);
    TakeNumber(record, "H=", place.height);
    TakeNumber(record, "S=", state);
    for (const WindowState special : {WindowState::Minimised, WindowState::Maximised})
        if (state == static_cast<float>(special)) return Form->State(special);
    if (place.width < 0 || place.height < 0) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    if (keepOnScreen) {
        const Size screen = Form->Manager().GetPeers().ScreenSize();
        if (screen.width <= place.left) place.left = screen.width - place.width;
        if (screen.height <= place.top) place.top = screen.height - place.height;
        if (place.left < 0) place.left = 0;
        if (place.top < 0) place.top = 0;
    }
    Form->Place(place);
}

void CFormPos::CenterForm() {
    Boxed("CenterForm", [this] {
        const Size screen = Window().Manager().GetPeers().ScreenSize();
        Form->CenterIn({0, 0, screen.width, screen.height});
    });
}

}  // namespace vantor
