// The settings store with a registry that records its calls.
#include "settings/CProgramSettings.hpp"

#include <gtest/gtest.h>

#include "NotedRegistry.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

class CProgramSettingsTest : public testing::Test {
protected:
    CProgramSettingsTest() {
        mStore.RegBase = "Company";
        mStore.Program = "Program";
    }
    ~CProgramSettingsTest() override { EXPECT_EQ(mRegistry.openKeys, 0) << "keys left open"; }

    void Put(const std::string& name, std::uint32_t type, std::string_view bytes) {
        RegistryKey key = 0;
        mRegistry.CreateKey(RegistryRoot::LocalMachine, "SOFTWARE\\Company\\Program\\Settings",
                            kRegistryAllButOwner, key);
        mRegistry.SetValue(key, name, type, bytes);
        mRegistry.CloseKey(key);
    }

    ReportingPlatform mPlatform;
    NotedRegistry mRegistry;
    CProgramSettings mStore{mRegistry, mPlatform.codePage};
};

TEST_F(CProgramSettingsTest, AnUnexpectedKindOfValueMustNotBeTakenForText) {
    const std::tuple<const char*, std::uint32_t, std::string, std::string> kCases[] = {
        {"text", kRegistryString, "COM1 \0"s, "COM1 "},
        {"text stored without its NUL", kRegistryString, "COM1", "COM1"},
        {"only the last NUL is dropped", kRegistryString, "a\0b\0\0"s, "a\0b\0"s},
        {"8-bit text", kRegistryString, "Espa\xf1\0"s, "Españ"},
        {"empty text", kRegistryString, "\0"s, "default"},
        {"no bytes at all", kRegistryString, "", "default"},
        {"number, high byte last", kRegistryDword, "\x05\x02\0\0"s, "517"},
        {"number above the signed range", kRegistryDword, "\xff\xff\xff\xff", "-1"},
        {"zero is not empty", kRegistryDword, "\0\0\0\0"s, "0"},
        {"number of the wrong size", kRegistryDword, "\x05\0\0\0\0"s, "default"},
        {"binary", kRegistryBinary, "COM1\0"s, "default"}};
    for (const auto& [what, type, bytes, read] : kCases) {
        Put("Value", type, bytes);
        EXPECT_EQ(mStore.ReadEntry("Value", "default"), read) << what;
    }
}

TEST_F(CProgramSettingsTest, TheKeyPathKeepsEmptyMiddlePartsAndLosesOneFinalBackslash) {
    const std::array<std::string, 4> kCases[] = {
        {"Company", "Program", "Settings", "SOFTWARE\\Company\\Program\\Settings"},
        {"Company", "Program", "", "SOFTWARE\\Company\\Program"},
        {"", "Program", "Settings", "SOFTWARE\\\\Program\\Settings"},
        {"Company", "", "", "SOFTWARE\\Company\\"},
        {"Compañía", "P", "S",
         "SOFTWARE\\Compa\xf1\xed"
         "a\\P\\S"}};
    for (const auto& [company, program, section, path] : kCases) {
        const NotedRegistry::Request expected = {RegistryRoot::LocalMachine, path, 63};
        mStore.RegBase = company;
        mStore.Program = program;
        mStore.Section = section;
        mStore.ReadEntry("x", "");
        EXPECT_EQ(std::get<1>(mRegistry.asked), path) << "read";
        mRegistry.asked = {};
        mStore.WriteEntry("x", "y");
        EXPECT_EQ(mRegistry.asked, expected) << "written";
        EXPECT_EQ(mStore.ReadEntry("x", "lost"), "y");
    }
    mStore.RootKey = RegistryRoot::CurrentUser;
    EXPECT_EQ(mStore.ReadEntry("x", "none"), "none") << "the other root's value";
}

TEST_F(CProgramSettingsTest, AWriteStoresExactlyTheBytesAndOneNul) {
    mStore.WriteEntry("Port", "COM1 ");
    mStore.WriteEntry("Name", "a\0ñ"s);
    EXPECT_EQ(mStore.ReadEntry("Name", ""), "a\0ñ"s);
    EXPECT_TRUE(mRegistry.Export().ends_with("\"Name\"=hex(1):61,00,f1,00\n\"Port\"=\"COM1 \"\n"))
        << mRegistry.Export();
}

TEST_F(CProgramSettingsTest, WhatIsMissingOrRefusedIsSilentReadsAsTheDefaultAndMakesNoKey) {
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM1");
    EXPECT_EQ(mRegistry.Export(), "REGEDIT4\n");
    Put("Other", kRegistryString, "x\0"s);
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM1");
    Put("Port", kRegistryString, "COM7\0"s);
    mRegistry.refuseKeys = true;
    mStore.WriteEntry("Port", "COM8");
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM1");
    mRegistry.refuseKeys = false;
    mRegistry.refuseValues = true;
    mStore.WriteEntry("Port", "COM8");
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM7");
    EXPECT_EQ(Told(mPlatform), Texts{});
}

}  // namespace
}  // namespace vantor
