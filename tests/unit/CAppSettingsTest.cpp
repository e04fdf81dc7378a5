// The settings object: its rules, its edit, and the exact form in which it stores itself.
#include "settings/CAppSettings.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "ReportingPlatform.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

const std::string kKey = "SOFTWARE\\Tessmar Instruments\\Tessmar Vantor Update\\Settings";
constexpr std::int32_t kNotInitialised = -2147211498;
constexpr std::int32_t kTooLong = -2147211503;
constexpr std::int32_t kInvalid = -2147211502;
constexpr std::int32_t kNotEditing = 445;
constexpr std::int32_t kTypeMismatch = 13;

// clang-format off
const std::map<std::string, std::string> kChanged = {
    {"AutoUnZip", "False"}, {"PassiveFTP", "True"}, {"CommPort", "COM7"}, {"BaudRate", "9600"},
    {"Parity", "e"}, {"DataBits", "7"}, {"StopBits", "1"}, {"ProxyEnable", "True"},
    {"ProxyHostname", " proxy.local "}, {"ProxyPort", "81"}, {"ProxyUsername", "ann"},
    {"ProxyPassword", "secreto ñ"}, {"ProxyType", "5"},
};
// clang-format on

class CAppSettingsTest : public testing::Test {
protected:
    void Store(const std::string& name, const std::string& text) {
        mPlatform.registry.Import("[HKEY_CURRENT_USER\\" + kKey + "]\n\"" + name + "\"=\"" + text +
                                  "\"\n");
    }
    /// The stored bytes of `name`, the NUL included; "(none)" when there is no value.
    std::string Stored(const std::string& name) {
        RegistryHive& hive = mPlatform.registry;
        RegistryKey key = 0;
        std::uint32_t type = 0;
        std::uint32_t size = 100;
        std::string bytes(size, '?');
        hive.OpenKey(RegistryRoot::CurrentUser, kKey, kRegistryAllButOwner, key);
        const RegistryResult result = hive.QueryValue(key, name, type, bytes.data(), size);
        hive.CloseKey(key);
        return result == kRegistrySuccess ? bytes.substr(0, size) : "(none)";
    }
    CAppSettings Loaded() {
        return CAppSettings(mPlatform.registry, mPlatform.codePage, mPlatform.files);
    }
    void BeginEdit() {
        mSettings.Initialize();
        mSettings.BeginEdit();
    }

    ReportingPlatform mPlatform;
    CAppSettings mSettings{mPlatform.registry, mPlatform.codePage, mPlatform.files};
    using Setter = std::function<void(const std::string&)>;
    // clang-format off
    const std::map<std::string, Setter> mSetters = {
        {"BaudRate", [this](auto& v) { mSettings.BaudRate(v); }},
        {"CommPort", [this](auto& v) { mSettings.CommPort(v); }},
        {"DataBits", [this](auto& v) { mSettings.DataBits(v); }},
        {"Parity", [this](auto& v) { mSettings.Parity(v); }},
        {"StopBits", [this](auto& v) { mSettings.StopBits(v); }},
        {"AutoUnZip", [this](auto& v) { mSettings.AutoUnZip(v == "True"); }},
        {"PassiveFTP", [this](auto& v) { mSettings.PassiveFTP(v == "True"); }},
        {"ProxyEnable", [this](auto& v) { mSettings.ProxyEnable(v == "True"); }},
        {"ProxyHostname", [this](auto& v) { mSettings.ProxyHostname(v); }},
        {"ProxyPassword", [this](auto& v) { mSettings.ProxyPassword(v); }},
        {"ProxyPort", [this](auto& v) { mSettings.ProxyPort(v); }},
        {"ProxyType", [this](auto& v) { mSettings.ProxyType(std::stoi(v)); }},
        {"ProxyUsername", [this](auto& v) { mSettings.ProxyUsername(v); }},
    };
    // clang-format on
    /// All fields in one text.
    std::string Fields() {
        const CAppSettings& s = mSettings;
        return s.CommPort() + "," + s.BaudRate() + "," + s.Parity() + "," + s.DataBits() + "," +
               s.StopBits() + "," + FromBool(s.AutoUnZip()) + "," + FromBool(s.PassiveFTP()) + "," +
               FromBool(s.ProxyEnable()) + "," + std::to_string(s.ProxyType()) + "," +
               s.ProxyHostname() + "," + s.ProxyPort() + "," + s.ProxyUsername() + "," +
               s.ProxyPassword();
    }
    void SetAll() {
        for (const auto& [name, value] : kChanged) mSetters.at(name)(value);
    }
};

const std::string kFresh = "COM1,38400,N,8,2,True,False,False,1,,8080,,";

TEST_F(CAppSettingsTest, AFreshSystemHasTheDefaultsAndNoKeyIsMade) {
    EXPECT_EQ(mSettings.CommPort() + mSettings.BaudRate() + mSettings.StopBits(), "COM1384002");
    mSettings.Initialize();
    EXPECT_EQ(Fields(), kFresh);
    EXPECT_EQ(Stored("Port"), "(none)");
}

TEST_F(CAppSettingsTest, AnAppliedEditStoresEveryValueInItsExactForm) {
    BeginEdit();
    SetAll();
    mSettings.ApplyEdit();
    // clang-format off
    const std::map<std::string, std::string> kStored = {
        {"AutoUnZip", "False"}, {"PassiveFTP", "True"}, {"Port", "COM7 "}, {"Baud", "9600  "},
        {"Parity", "e"}, {"DataBits", "7"}, {"StopBits", "1"}, {"EnableProxy", "True"},
        {"ProxyHostname", "proxy.local"}, {"ProxtPort", "81"}, {"ProxyUsername", "ann"},
        {"ProxyType", "5"},
    };
    // clang-format on
    for (const auto& [name, text] : kStored) EXPECT_EQ(Stored(name), text + '\0') << name;
    EXPECT_EQ(Stored("ProxyPassword").size(), 10u) << "nine characters in the code page and a NUL";
    EXPECT_EQ(Stored("ProxyPassword").find("secreto"), std::string::npos);
    EXPECT_EQ(Stored("ProxyPort"), "(none)") << "under the name that existing settings do not use";

    CAppSettings again = Loaded();
    again.Initialize();
    EXPECT_EQ(again.ProxyPassword(), "secreto ñ");
    EXPECT_EQ(again.ProxyPort(), "81");
    EXPECT_EQ(again.StopBits(), "2") << "whatever is stored, every load gives two stop bits";
}

TEST_F(CAppSettingsTest, NoPasswordIsLostThroughTheCharacterThatItScramblesTo) {
    for (char c = '!'; c <= '~'; ++c) {
        BeginEdit();
        mSettings.ProxyPassword(std::string(1, c));
        mSettings.ApplyEdit();
        CAppSettings again = Loaded();
        again.Initialize();
        EXPECT_EQ(again.ProxyPassword(), std::string(1, c));
    }
}

TEST_F(CAppSettingsTest, EachRuleRefusesWhatItMustAndLeavesTheFieldAlone) {
    const std::string ones(51, '1');
    const struct {
        const char* property;
        std::int32_t error;
        std::vector<std::string> values;
    } kCases[] = {
        // clang-format off
        {"BaudRate", 0, {"300", "115200"}}, {"BaudRate", kInvalid, {"14400", "fast", "", "0"}},
        {"BaudRate", kTooLong, {"1152000"}},
        {"CommPort", 0, {"COM1", "COM32", "32", "1"}},
        {"CommPort", kTypeMismatch, {"XCOM5", "COM"}},
        {"CommPort", kInvalid, {"COM33", "COM0", "0", "33", "-1", "com1", "LPT1", ""}},
        {"CommPort", kTooLong, {"COM032"}},
        {"DataBits", 0, {"7"}}, {"DataBits", kInvalid, {"9", "x", ""}},
        {"DataBits", kTooLong, {"10"}},
        {"Parity", 0, {"e", "O"}}, {"Parity", kInvalid, {"M", ""}}, {"Parity", kTooLong, {"NN"}},
        {"StopBits", 0, {"1"}}, {"StopBits", kInvalid, {"2", "x", ""}},
        {"StopBits", kTooLong, {"1.5"}},
        {"ProxyPort", 0, {"65535", "1"}}, {"ProxyPort", kInvalid, {"65536", "0", "x", ""}},
        {"ProxyPort", kTooLong, {"123456"}},
        {"ProxyType", 0, {"2", "5"}}, {"ProxyType", kInvalid, {"0", "6"}},
        {"ProxyHostname", 0, {ones.substr(0, 50)}},
        {"ProxyHostname", kTooLong, {ones.substr(0, 51)}},
        {"ProxyPassword", 0, {"ñ" + ones.substr(0, 19)}},
        {"ProxyPassword", kTooLong, {ones.substr(0, 21)}},
        {"ProxyUsername", 0, {ones.substr(0, 30)}},
        {"ProxyUsername", kTooLong, {ones.substr(0, 31)}},
        // clang-format on
    };
    mSettings.Initialize();
    for (const auto& c : kCases) {
        for (const std::string& value : c.values) {
            mSettings.BeginEdit();
            const RuntimeError error = Raised([&] { mSetters.at(c.property)(value); });
            EXPECT_EQ(error.Number(), c.error) << c.property << " = " << value;
            if (c.error != 0) {
                EXPECT_EQ(error.Source(), "Morvane.CAppSettings."s + c.property);
                EXPECT_EQ(Fields(), kFresh) << c.property << " = " << value;
            } else {
                EXPECT_NE(Fields().find(value), std::string::npos) << c.property;
            }
            mSettings.CancelEdit();
        }
    }
    mSettings.BeginEdit();
    EXPECT_NE(Raised([this] { mSettings.BaudRate("1"); }).Number(), 0);
    mSettings.ApplyEdit();
    EXPECT_EQ(Stored("Port"), "(none)") << "a refused value must not make the edit dirty";
}

TEST_F(CAppSettingsTest, TheProxyPortIsJudgedByTheOneHeld) {
    BeginEdit();
    mSettings.ProxyPort("90x");
    EXPECT_EQ(mSettings.ProxyPort(), "90x");
    EXPECT_EQ(Raised([this] { mSettings.ProxyPort("80"); }).Number(), kInvalid);
}

TEST_F(CAppSettingsTest, NothingIsAnsweredOrSetTooEarly) {
    const auto errorOf = [](const std::function<void()>& call) { return Raised(call).Number(); };
    for (const auto& [name, set] : mSetters)
        EXPECT_EQ(errorOf([&, &set = set] { set("111111111"); }), kNotInitialised) << name;
    // clang-format off
    const std::function<void()> kGuarded[] = {
        [this] { mSettings.AutoUnZip(); }, [this] { mSettings.PassiveFTP(); },
        [this] { mSettings.ProxyEnable(); }, [this] { mSettings.ProxyHostname(); },
        [this] { mSettings.ProxyPassword(); }, [this] { mSettings.ProxyPort(); },
        [this] { mSettings.ProxyType(); }, [this] { mSettings.ProxyUsername(); },
        [this] { mSettings.BeginEdit(); }, [this] { mSettings.ApplyEdit(); },
        [this] { mSettings.CancelEdit(); },
    };
    // clang-format on
    for (const auto& call : kGuarded) EXPECT_EQ(errorOf(call), kNotInitialised);

    mSettings.Initialize();
    for (const auto& [name, set] : mSetters)
        EXPECT_EQ(errorOf([&, &set = set] { set("111111111"); }), kNotEditing) << name;
    EXPECT_EQ(errorOf([this] { mSettings.ApplyEdit(); }), kNotEditing);
    EXPECT_EQ(errorOf([this] { mSettings.CancelEdit(); }), kNotEditing);
    mSettings.BeginEdit();
    const RuntimeError twice = Raised([this] { mSettings.BeginEdit(); });
    EXPECT_EQ(twice.Number(), kNotEditing);
    EXPECT_EQ(twice.Source(), "Morvane.CAppSettings.BeginEdit");
}

TEST_F(CAppSettingsTest, ACancelledEditLeavesNoTraceInMemoryOrStore) {
    BeginEdit();
    SetAll();
    EXPECT_NE(Fields(), kFresh);
    mSettings.CancelEdit();
    EXPECT_EQ(Fields(), kFresh);
    mSettings.BeginEdit();
    mSettings.ApplyEdit();
    EXPECT_EQ(Stored("Port"), "(none)") << "the cancelled edit stayed dirty";
}

TEST_F(CAppSettingsTest, AStoredValueThatCannotBeReadEndsTheLoadThere) {
    Store("Port", "COM9");
    Store("EnableProxy", "maybe");
    Store("ProxyHostname", "never.read");
    const RuntimeError error = Raised([this] { mSettings.Initialize(); });
    EXPECT_EQ(error.Number(), kTypeMismatch);
    EXPECT_EQ(error.Source(), "Morvane.CAppSettings.Initialize");
    EXPECT_EQ(Fields(), "COM9,38400,N,8,2,True,False,False,1,,8080,,");
}

TEST_F(CAppSettingsTest, StoredTextsAreCutToTheirFieldsAndNumbersReadLeniently) {
    Store("Port", "COM123");
    Store("AutoUnZip", "0");
    Store("PassiveFTP", "tRUE");
    const std::map<std::string, std::int32_t> kTypes = {
        {"3 abc", 3}, {"x", 0}, {"2.5", 2}, {"-7", -7}, {"", 1}};
    for (const auto& [text, type] : kTypes) {
        Store("ProxyType", text);
        mSettings.Initialize();
        EXPECT_EQ(mSettings.ProxyType(), type) << text;
    }
    EXPECT_EQ(mSettings.CommPort(), "COM12");
    EXPECT_FALSE(mSettings.AutoUnZip());
    EXPECT_TRUE(mSettings.PassiveFTP());
}

TEST(CBrokenRules, OnlyTheLastRuleToBeKeptAgainMakesTheObjectValid) {
    CBrokenRules rules;
    std::string events;
    rules.BrokenRule = [&events] { events += "B"; };
    rules.NoBrokenRules = [&events] { events += "N"; };
    rules.RuleBroken("a", true);
    rules.RuleBroken("b", true);
    rules.RuleBroken("a", false);
    EXPECT_EQ(events, "BB");
    rules.RuleBroken("b", false);
    EXPECT_EQ(events, "BBN");
    EXPECT_EQ(Raised([&] { rules.RuleBroken("b", false); }).Number(), 5);
}

}  // namespace
}  // namespace vantor
