#include "settings/CAppSettings.hpp"

#include <algorithm>
#include <array>

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

SettingsRecord Defaults() {
    SettingsRecord record;
    record.CommPort = "COM1";
    record.BaudRate = "38400";
    record.DataBits = "8";
    record.StopBits = "2";
    record.Parity = "N";
    record.AutoUnZip = true;
    record.ProxyType = 1;
    record.ProxyPort = "8080";
    return record;
}

bool IsBaudRate(const std::string& value) {
    constexpr std::array<std::int32_t, 10> kSpeeds = {300,  600,   1200,  2400,  4800,
                                                      9600, 19200, 38400, 57600, 115200};
    return IsNumeric(value) && std::ranges::count(kSpeeds, ToInt32(value)) > 0;
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

CAppSettings::CAppSettings(vantor::Registry& registry, const CodePage& codePage, Files& files)
    : mRegistry(registry), mCodePage(codePage), mFiles(files), mRecord(Defaults()) {
    mBrokenRules.BrokenRule = [this] { RaiseValid(false); };
    mBrokenRules.NoBrokenRules = [this] { RaiseValid(true); };
    // Initialize loads again and raises the error, so that it is reported once.
    Ignoring([this] { Load(); });
}

void CAppSettings::Initialize() {
    Raising(SourceOf("Initialize"), [this] {
        mInitialised = true;
        Load();
    });
}

void CAppSettings::RaiseValid(bool valid) {
    if (Valid) Valid(valid);
}

CProgramSettings CAppSettings::OpenStore() const {
    const AppInfo app;
    CProgramSettings store(mRegistry, mCodePage);
    store.RootKey = RegistryRoot::CurrentUser;
    store.MainBranch = "SOFTWARE";
    store.RegBase = app.companyName;
    store.Program = app.title;
    store.Section = "Settings";
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
        const SettingsRecord defaults = Defaults();
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
        mRecord.StopBits = defaults.StopBits.Padded();
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

void CAppSettings::RequireInitialised() const {
    if (!mInitialised) throw RuntimeError(kNotInitialised);
}

void CAppSettings::RequireEditing() const {
    if (!mEditing) throw RuntimeError(ErrorNumber::ActionNotSupported);
}

void CAppSettings::BeginEdit() {
    Raising(SourceOf("BeginEdit"), [this] {
        RequireInitialised();
        if (mEditing) throw RuntimeError(ErrorNumber::ActionNotSupported);
        mSaved = mRecord;
        mEditing = true;
    });
}

void CAppSettings::CancelEdit() {
    Raising(SourceOf("CancelEdit"), [this] {
        RequireInitialised();
        RequireEditing();
        mEditing = false;
        mDirty = false;
        mRecord = mSaved;
    });
}

void CAppSettings::ApplyEdit() {
    Raising(SourceOf("ApplyEdit"), [this] {
        RequireInitialised();
        RequireEditing();
        if (mDirty) {
            mSaved = mRecord;
            Save();
        }
        mDirty = false;
        mEditing = false;
    });
}

void CAppSettings::Set(std::string_view property, const std::function<void()>& rule,
                       const std::function<void()>& store) {
    Raising(SourceOf(property), [&] {
        RequireInitialised();
        RequireEditing();
        rule();
        store();
        mDirty = true;
    });
}

template <std::size_t Width>
void CAppSettings::SetText(std::string_view property, FixedText<Width>& field,
                           const std::string& value, const std::function<bool()>& keepsRule) {
    Set(
        property,
        [&] {
            if (CharacterCount(value) > Width) throw RuntimeError(kTooLong);
            if (!keepsRule()) throw RuntimeError(kInvalidValue);
        },
        [&] { field = value; });
}

template <typename Value>
Value CAppSettings::Get(std::string_view property, const std::function<Value()>& value) const {
    return Raising(SourceOf(property), [&] {
        RequireInitialised();
        return value();
    });
}

void CAppSettings::BaudRate(const std::string& value) {
    SetText("BaudRate", mRecord.BaudRate, value, [&] { return IsBaudRate(value); });
}

void CAppSettings::CommPort(const std::string& value) {
    SetText("CommPort", mRecord.CommPort, value, [&] { return IsCommPort(value); });
}

void CAppSettings::DataBits(const std::string& value) {
    SetText("DataBits", mRecord.DataBits, value, [&] {
        if (!IsNumeric(value)) return false;
        const std::int32_t bits = ToInt32(value);
        return bits == 7 || bits == 8;
    });
}

void CAppSettings::Parity(const std::string& value) {
    SetText("Parity", mRecord.Parity, value, [&] { return ParityOf(value).has_value(); });
}

void CAppSettings::StopBits(const std::string& value) {
    SetText("StopBits", mRecord.StopBits, value,
            [&] { return IsNumeric(value) && ToInt32(value) == 1; });
}

bool CAppSettings::AutoUnZip() const {
    return Get<bool>("AutoUnZip", [this] { return mRecord.AutoUnZip; });
}

void CAppSettings::AutoUnZip(bool value) {
    Set(
        "AutoUnZip", [] {}, [&] { mRecord.AutoUnZip = value; });
}

bool CAppSettings::PassiveFTP() const {
    return Get<bool>("PassiveFTP", [this] { return mRecord.PassiveFTP; });
}

void CAppSettings::PassiveFTP(bool value) {
    Set(
        "PassiveFTP", [] {}, [&] { mRecord.PassiveFTP = value; });
}

bool CAppSettings::ProxyEnable() const {
    return Get<bool>("ProxyEnable", [this] { return mRecord.ProxyEnable; });
}

void CAppSettings::ProxyEnable(bool value) {
    Set(
        "ProxyEnable", [] {}, [&] { mRecord.ProxyEnable = value; });
}

std::string CAppSettings::ProxyHostname() const {
    return Get<std::string>("ProxyHostname", [this] { return mRecord.ProxyHostname.Trimmed(); });
}

void CAppSettings::ProxyHostname(const std::string& value) {
    SetText("ProxyHostname", mRecord.ProxyHostname, value, [] { return true; });
}

std::string CAppSettings::ProxyPassword() const {
    return Get<std::string>("ProxyPassword", [this] { return mRecord.ProxyPassword.Trimmed(); });
}

void CAppSettings::ProxyPassword(const std::string& value) {
    SetText("ProxyPassword", mRecord.ProxyPassword, value, [] { return true; });
}

std::string CAppSettings::ProxyPort() const {
    return Get<std::string>("ProxyPort", [this] { return mRecord.ProxyPort.Trimmed(); });
}

void CAppSettings::ProxyPort(const std::string& value) {
    SetText("ProxyPort", mRecord.ProxyPort, value, [&] {
        // The numeric check tests the current port, not the new one. Kept for compatibility.
        if (!IsNumeric(ProxyPort())) return false;
        const double port = LeadingNumber(value);
        return port > 0 && port <= 65535;
    });
}

std::int32_t CAppSettings::ProxyType() const {
    return Get<std::int32_t>("ProxyType", [this] { return mRecord.ProxyType; });
}

void CAppSettings::ProxyType(std::int32_t value) {
    Set(
        "ProxyType",
        [&] {
            if (value < 1 || value > 5) throw RuntimeError(kInvalidValue);
        },
        [&] { mRecord.ProxyType = value; });
}

std::string CAppSettings::ProxyUsername() const {
    return Get<std::string>("ProxyUsername", [this] { return mRecord.ProxyUsername.Trimmed(); });
}

void CAppSettings::ProxyUsername(const std::string& value) {
    SetText("ProxyUsername", mRecord.ProxyUsername, value, [] { return true; });
}

}  // namespace vantor
