#include "settings/CAppSettings.hpp"

#include <algorithm>
#include <initializer_list>

#include "app/base/AppInfo.hpp"
#include "settings/CEncryption.hpp"
#include "settings/CProgramSettings.hpp"
#include "support/LineSettings.hpp"
#include "support/Traps.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

std::string SourceOf(std::string_view procedure) {
    return "Morvane.CAppSettings." + std::string(procedure);
}

/// Assembled at run time, so that the password is not a literal in the program file.
std::string StorePassword() {
    std::string password;
    for (const int code : {86, 52, 77, 107, 51}) password += static_cast<char>(code);
    return password;
}

bool IsOneOf(const std::string& value, std::initializer_list<std::int32_t> numbers) {
    return IsNumeric(value) && std::ranges::count(numbers, ToInt32(value)) > 0;
}

bool IsBaudRate(const std::string& value) {
    return IsOneOf(value, {300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200});
}

bool IsCommPort(const std::string& value) {
    constexpr int kHighest = 32;
    if (IsNumeric(value)) {
        const double number = ToDouble(value);
        return number > 0 && number <= kHighest;
    }
    // "COM" may be anywhere, but the number is what follows the third character:
    // "XCOM5" is a type mismatch rather than an invalid value.
    if (value.find("COM") == std::string::npos) return false;
    const std::int16_t number = ToInt16(std::string_view(value).substr(3));
    return number >= 1 && number <= kHighest;
}

}  // namespace

CAppSettings::CAppSettings(Registry& registry, const CodePage& codePage, Files& files)
    : mRegistry(registry), mCodePage(codePage), mFiles(files) {
    const auto raise = [this](bool valid) {
        if (Valid) Valid(valid);
    };
    mBrokenRules.BrokenRule = [raise] { raise(false); };
    mBrokenRules.NoBrokenRules = [raise] { raise(true); };
    // Initialize loads again and raises the error, so that it is reported once.
    Ignoring([this] { Load(); });
}

void CAppSettings::Initialize() {
    Raising(SourceOf("Initialize"), [this] {
        mInitialised = true;
        Load();
    });
}

CProgramSettings CAppSettings::OpenStore() const {
    const AppInfo app;
    CProgramSettings store(mRegistry, mCodePage);
    store.RootKey = RegistryRoot::CurrentUser;
    store.RegBase = app.companyName;
    store.Program = app.title;
    return store;
}

std::string CAppSettings::Scrambled(const std::string& text) const {
    CEncryption encryption(mCodePage, mFiles);
    encryption.Password = StorePassword();
    return encryption.EncryptStringAscii(text);
}

void CAppSettings::Load() {
    Raising(SourceOf("Load"), [this] {
        CProgramSettings store = OpenStore();
        const SettingsRecord defaults;
        const auto text = [&store](const char* name, const auto& field) {
            return store.ReadEntry(name, field.Trimmed());
        };
        const auto boolean = [&store](const char* name, bool fallback) {
            return ToBool(store.ReadEntry(name, FromBool(fallback)));
        };
        mRecord.AutoUnZip = boolean("AutoUnZip", defaults.AutoUnZip);
        mRecord.PassiveFTP = boolean("PassiveFTP", defaults.PassiveFTP);
        mRecord.CommPort = text("Port", defaults.CommPort);
        mRecord.BaudRate = text("Baud", defaults.BaudRate);
        mRecord.Parity = text("Parity", defaults.Parity);
        mRecord.DataBits = text("DataBits", defaults.DataBits);
        // Written by Save and never read: the indicator's monitor frames with two stop bits,
        // whatever is stored, and the setter rejects this very value.
        mRecord.StopBits = defaults.StopBits;
        mRecord.ProxyEnable = boolean("EnableProxy", defaults.ProxyEnable);
        mRecord.ProxyHostname = text("ProxyHostname", defaults.ProxyHostname);
        // "ProxtPort" is part of the stored format: correcting it would lose the setting.
        mRecord.ProxyPort = text("ProxtPort", defaults.ProxyPort);
        mRecord.ProxyUsername = text("ProxyUsername", defaults.ProxyUsername);
        mRecord.ProxyPassword = Scrambled(text("ProxyPassword", defaults.ProxyPassword));
        mRecord.ProxyType = ToInt32(
            LeadingNumber(store.ReadEntry("ProxyType", std::to_string(defaults.ProxyType))));
    });
}

void CAppSettings::Save() {
    Raising(SourceOf("Save"), [this] {
        CProgramSettings store = OpenStore();
        store.WriteEntry("AutoUnZip", FromBool(mRecord.AutoUnZip));
        store.WriteEntry("PassiveFTP", FromBool(mRecord.PassiveFTP));
        // The serial fields are stored in full width, with padding.
        store.WriteEntry("Port", mRecord.CommPort.Padded());
        store.WriteEntry("Baud", mRecord.BaudRate.Padded());
        store.WriteEntry("Parity", mRecord.Parity.Padded());
        store.WriteEntry("DataBits", mRecord.DataBits.Padded());
        store.WriteEntry("StopBits", mRecord.StopBits.Padded());
        store.WriteEntry("EnableProxy", FromBool(mRecord.ProxyEnable));
        store.WriteEntry("ProxyHostname", mRecord.ProxyHostname.Trimmed());
        store.WriteEntry("ProxtPort", mRecord.ProxyPort.Trimmed());
        store.WriteEntry("ProxyUsername", mRecord.ProxyUsername.Trimmed());
        store.WriteEntry("ProxyPassword", Scrambled(mRecord.ProxyPassword.Trimmed()));
        store.WriteEntry("ProxyType", std::to_string(mRecord.ProxyType));
    });
}

const SettingsRecord& CAppSettings::Record(std::string_view property) const {
    if (!mInitialised) throw RuntimeError(kNotInitialised, {}, SourceOf(property));
    return mRecord;
}

void CAppSettings::During(Edit required, std::string_view procedure, FunctionRef<void()> body) {
    Raising(SourceOf(procedure), [&] {
        if (!mInitialised) throw RuntimeError(kNotInitialised);
        if (mEdit != required) throw RuntimeError(ErrorNumber::ActionNotSupported);
        body();
    });
}

void CAppSettings::BeginEdit() {
    During(Edit::None, "BeginEdit", [this] {
        mSaved = mRecord;
        mEdit = Edit::Open;
    });
}

void CAppSettings::CancelEdit() {
    During(Edit::Open, "CancelEdit", [this] {
        mEdit = Edit::None;
        mDirty = false;
        mRecord = mSaved;
    });
}

void CAppSettings::ApplyEdit() {
    During(Edit::Open, "ApplyEdit", [this] {
        if (mDirty) {
            mSaved = mRecord;
            Save();
        }
        mDirty = false;
        mEdit = Edit::None;
    });
}

void CAppSettings::BaudRate(const std::string& value) {
    Set("BaudRate", mRecord.BaudRate, value, [&] { return IsBaudRate(value); });
}

void CAppSettings::CommPort(const std::string& value) {
    Set("CommPort", mRecord.CommPort, value, [&] { return IsCommPort(value); });
}

void CAppSettings::DataBits(const std::string& value) {
    Set("DataBits", mRecord.DataBits, value, [&] { return IsOneOf(value, {7, 8}); });
}

void CAppSettings::Parity(const std::string& value) {
    Set("Parity", mRecord.Parity, value, [&] { return ParityOf(value).has_value(); });
}

void CAppSettings::StopBits(const std::string& value) {
    Set("StopBits", mRecord.StopBits, value, [&] { return IsOneOf(value, {1}); });
}

void CAppSettings::ProxyPort(const std::string& value) {
    Set("ProxyPort", mRecord.ProxyPort, value, [&] {
        // The numeric check tests the current port, not the new one. Kept for compatibility.
        if (!IsNumeric(ProxyPort())) return false;
        const double port = LeadingNumber(value);
        return port > 0 && port <= 65535;
    });
}

void CAppSettings::ProxyType(std::int32_t value) {
    Set("ProxyType", mRecord.ProxyType, value, [value] { return value >= 1 && value <= 5; });
}

}  // namespace vantor
