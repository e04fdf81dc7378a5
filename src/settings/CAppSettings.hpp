// The user's settings: loaded from the registry, changed only inside an edit, validated value by
// value, and written back as a whole when the edit is applied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "settings/CBrokenRules.hpp"
#include "support/Conversions.hpp"
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

    FixedText() : mText(Width, ' ') {}
    FixedText& operator=(std::string_view text) {
        mText = FixedWidth(text, Width);
        return *this;
    }
    /// The whole field, with padding.
    const std::string& Padded() const { return mText; }
    std::string Trimmed() const { return std::string(TrimBlanks(mText)); }

private:
    std::string mText;
};

struct SettingsRecord {
    FixedText<5> CommPort;
    FixedText<6> BaudRate;
    FixedText<1> DataBits;
    FixedText<1> StopBits;
    FixedText<1> Parity;
    bool AutoUnZip = false;
    bool PassiveFTP = false;
    bool ProxyEnable = false;
    std::int32_t ProxyType = 0;
    FixedText<50> ProxyHostname;
    FixedText<5> ProxyPort;
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
    CAppSettings(vantor::Registry& registry, const CodePage& codePage, Files& files);
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

    bool AutoUnZip() const;
    void AutoUnZip(bool value);
    bool PassiveFTP() const;
    void PassiveFTP(bool value);
    bool ProxyEnable() const;
    void ProxyEnable(bool value);
    std::string ProxyHostname() const;
    void ProxyHostname(const std::string& value);
    std::string ProxyPassword() const;
    void ProxyPassword(const std::string& value);
    /// 1 to 65535, but see the setter.
    std::string ProxyPort() const;
    void ProxyPort(const std::string& value);
    /// 1 to 5.
    std::int32_t ProxyType() const;
    void ProxyType(std::int32_t value);
    std::string ProxyUsername() const;
    void ProxyUsername(const std::string& value);

    /// True when no rule is broken.
    bool IsValid() const { return mBrokenRules.Count() == 0; }
    /// Raised when `IsValid` changes, which never happens: no rule is ever added. The options
    /// dialog handles it as for any business object.
    std::function<void(bool& valid)> Valid;

private:
    void Load();
    void Save();
    CProgramSettings OpenStore() const;
    std::string Scrambled(const std::string& text) const;
    void RaiseValid(bool valid);

    void RequireInitialised() const;
    void RequireEditing() const;
    /// Common part of every setter: checks, then `rule`, then `store`, then the dirty flag.
    void Set(std::string_view property, const std::function<void()>& rule,
             const std::function<void()>& store);
    template <std::size_t Width>
    void SetText(std::string_view property, FixedText<Width>& field, const std::string& value,
                 const std::function<bool()>& keepsRule);
    /// Common part of every guarded getter.
    template <typename Value>
    Value Get(std::string_view property, const std::function<Value()>& value) const;

    vantor::Registry& mRegistry;
    const CodePage& mCodePage;
    Files& mFiles;
    SettingsRecord mRecord;
    SettingsRecord mSaved;
    bool mInitialised = false;
    bool mEditing = false;
    bool mDirty = false;
    CBrokenRules mBrokenRules;
};

}  // namespace vantor
