// The settings object: its rules, its edit transaction, and its exact storage format.
#include "settings/CAppSettings.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

const std::string kKeyLine =
    "[HKEY_CURRENT_USER\\SOFTWARE\\Tessmar Instruments\\Tessmar Vantor Update\\Settings]\n";
constexpr std::int32_t kNotInitialised = -2147211498;
constexpr std::int32_t kTooLong = -2147211503;
constexpr std::int32_t kInvalid = -2147211502;
constexpr std::int32_t kNotEditing = 445;
constexpr std::int32_t kTypeMismatch = 13;

class CAppSettingsTest : public testing::Test {
protected:
    void Store(const std::string& name, const std::string& text) {
        mPlatform.registry.Import(RegistryWith("Settings", '"' + name + "\"=\"" + text + "\"\n"));
    }
    void BeginEdit() {
        mSettings.Initialize();
        mSettings.BeginEdit();
    }
    bool NothingIsStored() const { return mPlatform.registry.Export() == "REGEDIT4\n"; }

    ReportingPlatform mPlatform;
    CAppSettings mSettings{mPlatform.registry, mPlatform.codePage, mPlatform.files};
    struct Property {
        const char* name;
        const char* changed;  // a value other than the default
        std::function<void(const std::string&)> set;
    };
    const std::vector<Property> mProperties = {
        {"BaudRate", "9600", [this](auto& v) { mSettings.BaudRate(v); }},
        {"CommPort", "COM7", [this](auto& v) { mSettings.CommPort(v); }},
        {"DataBits", "7", [this](auto& v) { mSettings.DataBits(v); }},
        {"Parity", "e", [this](auto& v) { mSettings.Parity(v); }},
        {"StopBits", "1", [this](auto& v) { mSettings.StopBits(v); }},
        {"AutoUnZip", "False", [this](auto& v) { mSettings.AutoUnZip(v == "True"); }},
        {"PassiveFTP", "True", [this](auto& v) { mSettings.PassiveFTP(v == "True"); }},
        {"ProxyEnable", "True", [this](auto& v) { mSettings.ProxyEnable(v == "True"); }},
        {"ProxyHostname", " proxy.local ", [this](auto& v) { mSettings.ProxyHostname(v); }},
        {"ProxyPassword", "secreto ñ", [this](auto& v) { mSettings.ProxyPassword(v); }},
        {"ProxyPort", "81", [this](auto& v) { mSettings.ProxyPort(v); }},
        {"ProxyType", "5", [this](auto& v) { mSettings.ProxyType(std::stoi(v)); }},
        {"ProxyUsername", "ann", [this](auto& v) { mSettings.ProxyUsername(v); }}};

    /// All fields as one string.
    std::string Fields() {
        const CAppSettings& s = mSettings;
        return s.CommPort() + "," + s.BaudRate() + "," + s.Parity() + "," + s.DataBits() + "," +
               s.StopBits() + "," + FromBool(s.AutoUnZip()) + "," + FromBool(s.PassiveFTP()) + "," +
               FromBool(s.ProxyEnable()) + "," + std::to_string(s.ProxyType()) + "," +
               s.ProxyHostname() + "," + s.ProxyPort() + "," + s.ProxyUsername() + "," +
               s.ProxyPassword();
    }
    void SetAll() {
        for (const Property& property : mProperties) property.set(property.changed);
    }
};

const std::string kFresh = "COM1,38400,N,8,2,True,False,False,1,,8080,,";

TEST_F(CAppSettingsTest, AFreshSystemHasTheDefaultsAndACancelledEditLeavesNoTrace) {
    EXPECT_EQ(mSettings.CommPort() + mSettings.BaudRate() + mSettings.StopBits(), "COM1384002");
    BeginEdit();
    EXPECT_EQ(Fields(), kFresh);
    SetAll();
    EXPECT_NE(Fields(), kFresh);
    mSettings.CancelEdit();
    EXPECT_EQ(Fields(), kFresh);
    mSettings.BeginEdit();
    mSettings.ApplyEdit();
    EXPECT_TRUE(NothingIsStored()) << "the cancelled edit stayed dirty";
}

TEST_F(CAppSettingsTest, AnAppliedEditStoresEveryValueInItsExactForm) {
    BeginEdit();
    SetAll();
    mSettings.ApplyEdit();
    EXPECT_EQ(mPlatform.registry.Export(),
              "REGEDIT4\n\n" + kKeyLine +
                  "\"AutoUnZip\"=\"False\"\n"
                  "\"Baud\"=\"9600  \"\n"
                  "\"DataBits\"=\"7\"\n"
                  "\"EnableProxy\"=\"True\"\n"
                  "\"Parity\"=\"e\"\n"
                  "\"PassiveFTP\"=\"True\"\n"
                  "\"Port\"=\"COM7 \"\n"
                  "\"ProxtPort\"=\"81\"\n"
                  "\"ProxyHostname\"=\"proxy.local\"\n"
                  "\"ProxyPassword\"=hex(1):25,65,3f,72,1c,74,86,20,5a,00\n"
                  "\"ProxyType\"=\"5\"\n"
                  "\"ProxyUsername\"=\"ann\"\n"
                  "\"StopBits\"=\"1\"\n");

    mSettings.Initialize();
    EXPECT_EQ(Fields(), "COM7,9600,e,7,2,False,True,True,5,proxy.local,81,ann,secreto ñ")
        << "whatever is stored, every load gives two stop bits";
}

TEST_F(CAppSettingsTest, EachRuleRefusesWhatItMustAndLeavesTheFieldAlone) {
    const struct {
        const char* property;
        Texts good;
        Texts invalid;
        std::string tooLong;
    } kCases[] = {{"BaudRate", {"300", "115200"}, {"14400", "fast", "", "0"}, "1152000"},
                  {"CommPort",
                   {"COM1", "COM32", "32", "1"},
                   {"COM33", "COM0", "0", "33", "-1", "com1", "LPT1", ""},
                   "COM032"},
                  {"DataBits", {"7"}, {"9", "x", ""}, "10"},
                  {"Parity", {"e", "O"}, {"M", ""}, "NN"},
                  {"StopBits", {"1"}, {"2", "x", ""}, "1.5"},
                  {"ProxyPort", {"65535", "1"}, {"65536", "0", "x", ""}, "123456"},
                  {"ProxyType", {"2", "5"}, {"0", "6"}, ""},
                  {"ProxyHostname", {std::string(50, 'h')}, {}, std::string(51, 'h')},
                  {"ProxyPassword", {"ñ" + std::string(19, 'p')}, {}, std::string(21, 'p')},
                  {"ProxyUsername", {std::string(30, 'u')}, {}, std::string(31, 'u')}};
    mSettings.Initialize();
    const auto judge = [this](const char* name, const std::string& value, std::int32_t verdict) {
        mSettings.BeginEdit();
        const auto property = std::ranges::find(mProperties, std::string(name), &Property::name);
        const RuntimeError error = Raised([&] { property->set(value); });
        EXPECT_EQ(error.Number(), verdict) << name << " = " << value;
        if (verdict == 0) {
            EXPECT_NE(Fields().find(value), std::string::npos) << name;
            mSettings.CancelEdit();
        } else {
            EXPECT_EQ(error.Source(), "Morvane.CAppSettings."s + name);
            EXPECT_EQ(Fields(), kFresh) << name << " = " << value;
            mSettings.ApplyEdit();
        }
    };
    for (const auto& c : kCases) {
        for (const std::string& value : c.good) judge(c.property, value, 0);
        for (const std::string& value : c.invalid) judge(c.property, value, kInvalid);
        if (!c.tooLong.empty()) judge(c.property, c.tooLong, kTooLong);
    }
    for (const char* text : {"XCOM5", "COM"}) judge("CommPort", text, kTypeMismatch);
    EXPECT_TRUE(NothingIsStored()) << "a refused value must not make the edit dirty";
}

TEST_F(CAppSettingsTest, TheProxyPortIsJudgedByTheOneHeld) {
    BeginEdit();
    mSettings.ProxyPort("90x");
    EXPECT_EQ(mSettings.ProxyPort(), "90x");
    EXPECT_EQ(Raised([this] { mSettings.ProxyPort("80"); }).Number(), kInvalid);
}

TEST_F(CAppSettingsTest, NothingIsAnsweredOrSetTooEarly) {
    const auto errorOf = [](const std::function<void()>& call) { return Raised(call).Number(); };
    const auto expectOfAllSetters = [&](std::int32_t error) {
        for (const Property& property : mProperties)
            EXPECT_EQ(errorOf([&] { property.set("111111111"); }), error) << property.name;
    };
    expectOfAllSetters(kNotInitialised);
    const std::function<void()> kGuarded[] = {
        [this] { mSettings.AutoUnZip(); },     [this] { mSettings.PassiveFTP(); },
        [this] { mSettings.ProxyEnable(); },   [this] { mSettings.ProxyHostname(); },
        [this] { mSettings.ProxyPassword(); }, [this] { mSettings.ProxyPort(); },
        [this] { mSettings.ProxyType(); },     [this] { mSettings.ProxyUsername(); },
        [this] { mSettings.BeginEdit(); },     [this] { mSettings.ApplyEdit(); },
        [this] { mSettings.CancelEdit(); }};
    for (const auto& call : kGuarded) EXPECT_EQ(errorOf(call), kNotInitialised);

    mSettings.Initialize();
    expectOfAllSetters(kNotEditing);
    EXPECT_EQ(errorOf([this] { mSettings.ApplyEdit(); }), kNotEditing);
    EXPECT_EQ(errorOf([this] { mSettings.CancelEdit(); }), kNotEditing);
    mSettings.BeginEdit();
    const RuntimeError twice = Raised([this] { mSettings.BeginEdit(); });
    EXPECT_EQ(twice.Number(), kNotEditing);
    EXPECT_EQ(twice.Source(), "Morvane.CAppSettings.BeginEdit");
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
