// The settings object: its rules, its edit transaction, and its exact storage format.
#include "settings/CAppSettings.hpp"

#include <gtest/gtest.h>

#include <map>

#include "settings/CBrokenRules.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

using S = CAppSettings;
using V = const std::string&;
struct Field {
    std::string name;
    std::string (*get)(S&);
    void (*set)(S&, V);
};

// clang-format off
const std::vector<Field> kFields = {
    {"CommPort", [](S& s) { return s.CommPort(); }, [](S& s, V v) { s.CommPort(v); }},
    {"BaudRate", [](S& s) { return s.BaudRate(); }, [](S& s, V v) { s.BaudRate(v); }},
    {"Parity", [](S& s) { return s.Parity(); }, [](S& s, V v) { s.Parity(v); }},
    {"DataBits", [](S& s) { return s.DataBits(); }, [](S& s, V v) { s.DataBits(v); }},
    {"StopBits", [](S& s) { return s.StopBits(); }, [](S& s, V v) { s.StopBits(v); }},
    {"AutoUnZip", [](S& s) { return FromBool(s.AutoUnZip()); },
     [](S& s, V v) { s.AutoUnZip(v == "True"); }},
    {"PassiveFTP", [](S& s) { return FromBool(s.PassiveFTP()); },
     [](S& s, V v) { s.PassiveFTP(v == "True"); }},
    {"ProxyEnable", [](S& s) { return FromBool(s.ProxyEnable()); },
     [](S& s, V v) { s.ProxyEnable(v == "True"); }},
    {"ProxyType", [](S& s) { return std::to_string(s.ProxyType()); },
     [](S& s, V v) { s.ProxyType(v.empty() ? 0 : std::stoi(v)); }},
    {"ProxyHostname", [](S& s) { return s.ProxyHostname(); },
     [](S& s, V v) { s.ProxyHostname(v); }},
    {"ProxyPort", [](S& s) { return s.ProxyPort(); }, [](S& s, V v) { s.ProxyPort(v); }},
    {"ProxyUsername", [](S& s) { return s.ProxyUsername(); },
     [](S& s, V v) { s.ProxyUsername(v); }},
    {"ProxyPassword", [](S& s) { return s.ProxyPassword(); },
     [](S& s, V v) { s.ProxyPassword(v); }}};
// clang-format on

std::string FieldsOf(S& settings) {
    std::string fields;
    for (const Field& field : kFields) fields += field.get(settings) + ",";
    return fields;
}

/// Takes the steps of a row: "init", "begin", "apply", "cancel", "NAME=VALUE" sets, "NAME" gets,
/// "stored:NAME=VALUE" puts a value into the registry; "fields" and "registry" return what there
/// is. An error returns its number and procedure.
std::string Steps(const Words& steps) {
    ReportingPlatform platform;
    S settings(platform.registry, platform.codePage, platform.files);
    const std::map<std::string, std::function<std::string()>> verbs = {
        {"init", [&] { return settings.Initialize(), ""; }},
        {"begin", [&] { return settings.BeginEdit(), ""; }},
        {"apply", [&] { return settings.ApplyEdit(), ""; }},
        {"cancel", [&] { return settings.CancelEdit(), ""; }},
        {"fields", [&] { return FieldsOf(settings); }},
        {"registry", [&] { return platform.registry.Export(); }}};
    std::string result;
    for (const std::string& step : steps) {
        const std::size_t end = std::min(step.find('='), step.size());
        const std::string name = step.substr(0, end);
        const std::string value = step.substr(std::min(end + 1, step.size()));
        const RuntimeError error = Raised([&] {
            if (name.starts_with("stored:"))
                platform.registry.Import(
                    RegistryWith("Settings", '"' + name.substr(7) + "\"=\"" + value + "\"\n"));
            else if (verbs.contains(step))
                result += verbs.at(step)();
            else if (const Field& field = *std::ranges::find(kFields, name, &Field::name);
                     end < step.size())
                field.set(settings, value);
            else
                result += field.get(settings);
        });
        if (error.Number() == 0) continue;
        EXPECT_TRUE(error.Source().starts_with("Morvane.CAppSettings.")) << error.Source();
        result += std::to_string(error.Number()) + error.Source().substr(20) + " ";
    }
    EXPECT_EQ(Told(platform), Texts{});
    return result;
}

TEST(CAppSettings, DoesWhatTheTableSays) {
    ExpectTable("settings", Steps);
}

// A refused value leaves the field alone and the edit clean.
TEST(CAppSettings, EachRuleRefusesWhatItMust) {
    const std::string fresh = Steps({"init", "fields"});
    ExpectTable("settings-rules", [&](const Words& words) {
        std::string verdicts;
        for (const std::string& value : Words(words.begin() + 1, words.end())) {
            const std::string set = words[0] + "=" + value;
            const std::string held = Steps({"init", "begin", set, words[0]});
            const std::string error = held.substr(0, held.find(' ') + 1);
            const bool accepted = held == value;
            if (!accepted) {
                EXPECT_EQ(Steps({"init", "begin", set, "fields"}), error + fresh) << set;
                EXPECT_EQ(Steps({"init", "begin", set, "apply", "registry"}), error + "REGEDIT4\n");
            }
            verdicts +=
                (verdicts.empty() ? "" : " ") + (accepted ? "ok" : held.substr(0, held.find('.')));
        }
        return verdicts;
    });
}

TEST(CBrokenRules, OnlyTheLastRuleToBeKeptAgainMakesTheObjectValid) {
    CBrokenRules rules;
    std::string events;
    rules.BrokenRule = [&events] { events += "B"; };
    rules.NoBrokenRules = [&] { events += "N" + std::to_string(rules.Count()); };
    for (const auto& [rule, broken] :
         {std::pair("a", true), {"b", true}, {"a", false}, {"b", false}})
        rules.RuleBroken(rule, broken);
    EXPECT_EQ(events, "BBN0");
    EXPECT_EQ(Raised([&] { rules.RuleBroken("b", false); }).Number(), 5);
    rules.RuleBroken("b", true);
    EXPECT_EQ(Raised([&] { rules.RuleBroken("b", true); }).Number(), 457);
    EXPECT_EQ(rules.Count(), 1);
}

}  // namespace
}  // namespace vantor
