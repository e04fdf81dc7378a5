// The user's settings: loaded from the registry, changed only inside an edit, validated value by
// value, and written back as a whole when the edit is applied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>

#include "settings/CBrokenRules.hpp"
#include "support/Conversions.hpp"
#include "support/FunctionRef.hpp"
#include "support/errors/RuntimeError.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {

class CodePage;
class CProgramSettings;
class Files;
class Registry;

/// A text field of `Width` characters, padded with spaces or truncated.
template <std::size_t Width>
class FixedText {
public:
    static constexpr std::size_t kWidth = Width;

    FixedText(const std::string& text = {}) : mText(FixedWidth(text, Width)) {}
    /// The whole field, with padding.
    const std::string& Padded() const { return mText; }
    std::string Trimmed() const { return std::string(TrimBlanks(mText)); }

private:
    std::string mText;
};

/// Its initial values are the defaults of the stored ones.
struct SettingsRecord {
    FixedText<5> CommPort{"COM1"};
    FixedText<6> BaudRate{"38400"};
    FixedText<1> DataBits{"8"};
    FixedText<1> StopBits{"2"};
    FixedText<1> Parity{"N"};
    bool AutoUnZip = true;
    bool PassiveFTP = false;
    bool ProxyEnable = false;
    std::int32_t ProxyType = 1;
    FixedText<50> ProxyHostname;
    FixedText<5> ProxyPort{"8080"};
    FixedText<20> ProxyPassword;  // plain in memory
    FixedText<30> ProxyUsername;
};

/// One shared object per run. Getters return trimmed text; those of the serial line are valid at
/// any time, the others only once initialised. Setters check in this order and change nothing on
/// failure. Every error has the source "Morvane.CAppSettings." and the operation's name:
///   kNotInitialised  a setter, a transaction or a guarded getter before Initialize
///   445              a setter or the end of an edit outside one; BeginEdit inside one
///   kTooLong         a text longer than its field
///   kInvalidValue    a violation of the property's rule
class CAppSettings {
public:
    static constexpr std::int32_t kTooLong = kObjectError + 10001;
    static constexpr std::int32_t kInvalidValue = kObjectError + 10002;
    static constexpr std::int32_t kNotInitialised = kObjectError + 10006;

    /// Loads the settings. An unreadable stored value ends the load there; the error is raised
    /// later, by Initialize. The services must outlive the object.
    CAppSettings(Registry& registry, const CodePage& codePage, Files& files);
    CAppSettings(const CAppSettings&) = delete;
    CAppSettings& operator=(const CAppSettings&) = delete;

    /// Marks the object initialised and loads again. Raises the error that ended the load (13 for
    /// an invalid stored boolean). The object is usable all the same: values read before it are
    /// kept, the others have their defaults.
    void Initialize();

    void BeginEdit();
    /// Writes the record when a property was set since BeginEdit, and ends the edit.
    void ApplyEdit();
    /// Restores every field to its value at BeginEdit, and ends the edit.
    void CancelEdit();

    /// 300 to 115200 in the usual steps.
    std::string BaudRate() const { return mRecord.BaudRate.Trimmed(); }
    void BaudRate(const std::string& value);
    /// "COM1" to "COM32", or only the number.
    std::string CommPort() const { return mRecord.CommPort.Trimmed(); }
    void CommPort(const std::string& value);
    std::string DataBits() const { return mRecord.DataBits.Trimmed(); }
    void DataBits(const std::string& value);
    /// "N", "O" or "E" in either case, stored as given.
    std::string Parity() const { return mRecord.Parity.Trimmed(); }
    void Parity(const std::string& value);
    /// "2" after every load, although only 1 can be set.
    std::string StopBits() const { return mRecord.StopBits.Trimmed(); }
    void StopBits(const std::string& value);

    bool AutoUnZip() const { return Record("AutoUnZip").AutoUnZip; }
    void AutoUnZip(bool value) { Set("AutoUnZip", mRecord.AutoUnZip, value); }
    bool PassiveFTP() const { return Record("PassiveFTP").PassiveFTP; }
    void PassiveFTP(bool value) { Set("PassiveFTP", mRecord.PassiveFTP, value); }
    bool ProxyEnable() const { return Record("ProxyEnable").ProxyEnable; }
    void ProxyEnable(bool value) { Set("ProxyEnable", mRecord.ProxyEnable, value); }
    std::string ProxyHostname() const { return Record("ProxyHostname").ProxyHostname.Trimmed(); }
    void ProxyHostname(const std::string& value) {
        Set("ProxyHostname", mRecord.ProxyHostname, value);
    }
    std::string ProxyPassword() const { return Record("ProxyPassword").ProxyPassword.Trimmed(); }
    void ProxyPassword(const std::string& value) {
        Set("ProxyPassword", mRecord.ProxyPassword, value);
    }
    /// 1 to 65535, but see the setter.
    std::string ProxyPort() const { return Record("ProxyPort").ProxyPort.Trimmed(); }
    void ProxyPort(const std::string& value);
    /// 1 to 5.
    std::int32_t ProxyType() const { return Record("ProxyType").ProxyType; }
    void ProxyType(std::int32_t value);
    std::string ProxyUsername() const { return Record("ProxyUsername").ProxyUsername.Trimmed(); }
    void ProxyUsername(const std::string& value) {
        Set("ProxyUsername", mRecord.ProxyUsername, value);
    }

    /// True between BeginEdit and ApplyEdit or CancelEdit.
    bool Editing() const { return mEdit == Edit::Open; }
    /// True when no rule is broken.
    bool IsValid() const { return mBrokenRules.Count() == 0; }
    /// Raised when `IsValid` changes, which never happens: no rule is ever added. The options
    /// dialog handles it as for any business object.
    std::function<void(bool& valid)> Valid;

private:
    enum class Edit : std::uint8_t { None, Open };

    void Load();
    void Save();
    CProgramSettings OpenStore() const;
    std::string Scrambled(const std::string& text) const;

    /// The record, for the guarded getter `property`.
    const SettingsRecord& Record(std::string_view property) const;
    /// Runs `body` as `procedure` in an initialised object, in the state `required` only.
    void During(Edit required, std::string_view procedure, FunctionRef<void()> body);
    /// The setters: store `value` in `field` if `rule` accepts it.
    template <typename Field, typename Value>
    void Set(std::string_view property, Field& field, const Value& value,
             const std::function<bool()>& rule = {}) {
        During(Edit::Open, property, [&] {
            if constexpr (std::is_same_v<Value, std::string>)
                if (CharacterCount(value) > Field::kWidth) throw RuntimeError(kTooLong);
            if (rule && !rule()) throw RuntimeError(kInvalidValue);
            field = value;
            mDirty = true;
        });
    }

    Registry& mRegistry;
    const CodePage& mCodePage;
    Files& mFiles;
    SettingsRecord mRecord;
    SettingsRecord mSaved;
    bool mInitialised = false;
    Edit mEdit = Edit::None;
    bool mDirty = false;
    CBrokenRules mBrokenRules;
};

}  // namespace vantor
