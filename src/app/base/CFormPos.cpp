#include "app/base/CFormPos.hpp"

#include <array>
#include <cstdio>
#include <string_view>

#include "app/base/AppInfo.hpp"
#include "app/base/StoredValue.hpp"
#include "controls/Form.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

/// A single-precision number as decimal text.
std::string Decimal(float number) {
    std::array<char, 64> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.7g", static_cast<double>(number));
    return {text.data(), static_cast<std::size_t>(length)};
}

/// Sets `quantity` to the number after `marker`; leaves it unchanged when the marker is missing.
void TakeNumber(std::string_view record, std::string_view marker, float& quantity) {
    const std::size_t at = record.find(marker);
    if (at == std::string_view::npos) return;
    const double number = LeadingNumber(record.substr(at + marker.size()));
    // A number beyond 32 bits would overflow in the arithmetic on positions.
    static_cast<void>(ToInt32(number));
    quantity = static_cast<float>(number);
}

}  // namespace

CFormPos::CFormPos(vantor::Registry& registry, const CodePage& codePage)
    : mRegistry(registry), mCodePage(codePage) {
    BoxedSetup("Morvane.CFormPos.Class_Initialize", [this] {
        const AppInfo app;
        RegistryPath = "SOFTWARE\\" + app.companyName + "\\" + app.title;
        SubKey = "Positions";
    });
}

std::string CFormPos::KeyPath() const {
    return SubKey.empty() ? RegistryPath : RegistryPath + "\\" + SubKey;
}

void CFormPos::SaveForm() {
    Boxed("SaveForm", [this] {
        if (!Form) throw RuntimeError(ErrorNumber::ObjectNotSet);
        const Place& place = Form->Place();
        RegistrySetKeyValue(Form->Name(),
                            "L=" + Decimal(place.left) + ";T=" + Decimal(place.top) +
                                ";W=" + Decimal(place.width) + ";H=" + Decimal(place.height) +
                                ";S=" + std::to_string(static_cast<int>(Form->State())) + ";");
    });
}

bool CFormPos::RestoreForm(bool keepOnScreen) {
    bool restored = false;
    Boxed("RestoreForm", [&] {
        if (!Form) throw RuntimeError(ErrorNumber::ObjectNotSet);
        const std::string record = RegistryGetKeyValue(Form->Name());
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
    for (const WindowState special : {WindowState::Minimised, WindowState::Maximised}) {
        if (state != static_cast<float>(special)) continue;
        Form->State(special);
        return;
    }
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
        if (!Form) throw RuntimeError(ErrorNumber::ObjectNotSet);
        const Size screen = Form->Manager().GetPeers().ScreenSize();
        Form->CenterIn({0, 0, screen.width, screen.height});
    });
}

std::string CFormPos::RegistryGetKeyValue(const std::string& name) {
    std::string text;
    Boxed("RegistryGetKeyValue", [&] {
        const StoredValue value =
            ReadStoredValue(mRegistry, mCodePage, RootKey, KeyPath(), name, kRegistryQueryValue);
        if (const auto* stored = std::get_if<std::string>(&value)) text = *stored;
    });
    return text;
}

void CFormPos::RegistrySetKeyValue(const std::string& name, const std::string& value) {
    Boxed("RegistrySetKeyValue", [&] {
        WriteStoredText(mRegistry, mCodePage, RootKey, KeyPath(), name, value, kRegistryString);
    });
}

}  // namespace vantor
