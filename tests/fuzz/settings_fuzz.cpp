// Stored settings. The first byte of the input selects a property, the rest of the first line is
// its new value, which the property rejects or stores. The following lines are the stored values
// in loading order. Loaded settings must equal saved ones.
#include "app/base/AppInfo.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "settings/CAppSettings.hpp"
#include "support/text/Text.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {
namespace {

std::string Told(const CAppSettings& settings) {
    std::string told;
    for (const std::string& text :
         {settings.CommPort(), settings.BaudRate(), settings.DataBits(), settings.StopBits(),
          settings.Parity(), FromBool(settings.AutoUnZip()), FromBool(settings.PassiveFTP()),
          FromBool(settings.ProxyEnable()), std::to_string(settings.ProxyType()),
          settings.ProxyHostname(), settings.ProxyUsername(), settings.ProxyPassword()})
        told += text + '\n';
    // An empty proxy port is saved as an empty value, which loads as the default.
    return told + (settings.ProxyPort().empty() ? "8080" : settings.ProxyPort());
}

void Store(Registry& registry, std::string_view input) {
    const AppInfo app;
    RegistryKey key = 0;
    registry.CreateKey(RegistryRoot::CurrentUser,
                       "SOFTWARE\\" + app.companyName + "\\" + app.title + "\\Settings",
                       kRegistryAllButOwner, key);
    for (const char* name :
         {"AutoUnZip", "PassiveFTP", "Port", "Baud", "Parity", "DataBits", "EnableProxy",
          "ProxyHostname", "ProxtPort", "ProxyUsername", "ProxyPassword", "ProxyType"})
        registry.SetValue(key, name, kRegistryString, TakeLine(input));
    registry.CloseKey(key);
}

/// Sets one property, which must reject the value or store it trimmed.
void Edit(CAppSettings& settings, unsigned property, const std::string& value) {
    using S = CAppSettings;
    constexpr struct {
        void (S::*set)(const std::string&);
        std::string (S::*get)() const;
    } kProperties[] = {{&S::CommPort, &S::CommPort},
                       {&S::BaudRate, &S::BaudRate},
                       {&S::Parity, &S::Parity},
                       {&S::DataBits, &S::DataBits},
                       {&S::StopBits, &S::StopBits},
                       {&S::ProxyPort, &S::ProxyPort},
                       {&S::ProxyPassword, &S::ProxyPassword}};
    const auto& chosen = kProperties[property % std::size(kProperties)];
    if (Accepts([&] { (settings.*chosen.set)(value); }))
        Require((settings.*chosen.get)() == TrimBlanks(value));
}

}  // namespace

std::vector<std::string> Seeds() {
    return {"1COM32\nTrue\n0\nCOM1 \n38400 \nN\n8\n-1\nproxy\n8080\nuser\nsecret\n5",
            "2115200\nFalse\nfalse\n32\n300\ne\n7\nTRUE\n\n1e3\n\n\n&H10", "\3007\n1\n1"};
}

void Fuzz(std::string_view input) {
    static HeadlessPlatform headless;
    headless.registry.Clear();
    const unsigned property = TakeByte(input);
    const std::string value(TakeLine(input));
    Store(headless.registry, input);
    CAppSettings settings(headless.registry, headless.codePage, headless.files);
    if (!Accepts([&] { settings.Initialize(); })) return;
    settings.BeginEdit();
    const std::string before = Told(settings);
    Edit(settings, property, value);
    settings.CancelEdit();
    Require(Told(settings) == before);
    settings.BeginEdit();
    settings.AutoUnZip(settings.AutoUnZip());
    settings.ApplyEdit();
    CAppSettings other(headless.registry, headless.codePage, headless.files);
    other.Initialize();
    Require(Told(other) == before);
}

}  // namespace vantor
