// The settings store against a registry that notes what it is asked for.
#include "settings/CProgramSettings.hpp"

#include <gtest/gtest.h>

#include <array>
#include <new>
#include <string>
#include <tuple>
#include <vector>

#include "ReportingPlatform.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

class NotedRegistry : public RegistryHive {
public:
    RegistryResult OpenKey(RegistryRoot under, const std::string& of, std::uint32_t mask,
                           RegistryKey& key) override {
        if (refuse) return kRegistryAccessDenied;
        return Noted(under, of, mask, RegistryHive::OpenKey(under, of, mask, key));
    }
    RegistryResult CreateKey(RegistryRoot under, const std::string& of, std::uint32_t mask,
                             RegistryKey& key) override {
        if (refuse) return kRegistryAccessDenied;
        return Noted(under, of, mask, RegistryHive::CreateKey(under, of, mask, key));
    }
    RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                              char* data, std::uint32_t& size) override {
        if (exhausted) throw std::bad_alloc();
        return RegistryHive::QueryValue(key, name, type, data, size);
    }
    RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                            std::string_view bytes) override {
        if (exhausted) throw std::bad_alloc();
        setType = type;
        setBytes = bytes;
        return refuseValues ? kRegistryWriteFault : RegistryHive::SetValue(key, name, type, bytes);
    }
    RegistryResult CloseKey(RegistryKey key) override {
        --openKeys;
        return RegistryHive::CloseKey(key);
    }

    bool refuse = false;
    bool refuseValues = false;
    bool exhausted = false;
    int openKeys = 0;
    RegistryRoot root{};
    std::string path;
    std::uint32_t access = 0;
    std::uint32_t setType = 0;
    std::string setBytes;

private:
    RegistryResult Noted(RegistryRoot under, const std::string& of, std::uint32_t mask,
                         RegistryResult result) {
        root = under;
        path = of;
        access = mask;
        openKeys += result == kRegistrySuccess;
        return result;
    }
};

class CProgramSettingsTest : public testing::Test {
protected:
    CProgramSettingsTest() {
        mStore.RegBase = "Company";
        mStore.Program = "Program";
    }
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
    // clang-format off
    const std::tuple<const char*, std::uint32_t, std::string, std::string> kCases[] = {
        {"text", kRegistryString, "COM1 \0"s, "COM1 "},
        {"text stored without its NUL", kRegistryString, "COM1", "COM1"},
        {"only the last NUL is dropped", kRegistryString, "a\0b\0\0"s, "a\0b\0"s},
        {"8-bit text", kRegistryString, "Espa\xf1\0"s, "Españ"},
        {"empty text", kRegistryString, "\0"s, "default"},
        {"no bytes at all", kRegistryString, "", "default"},
        {"number", kRegistryDword, "\x05\0\0\0"s, "5"},
        {"number, high byte last", kRegistryDword, "\0\x02\0\0"s, "512"},
        {"number above the signed range", kRegistryDword, "\xff\xff\xff\xff", "-1"},
        {"zero is not empty", kRegistryDword, "\0\0\0\0"s, "0"},
        {"number of the wrong size", kRegistryDword, "\x05\0\0\0\0"s, "default"},
        {"binary", kRegistryBinary, "COM1\0"s, "default"},
    };
    // clang-format on
    for (const auto& [what, type, bytes, read] : kCases) {
        Put("Value", type, bytes);
        EXPECT_EQ(mStore.ReadEntry("Value", "default"), read) << what;
    }
    EXPECT_EQ(mRegistry.openKeys, 0);
}

TEST_F(CProgramSettingsTest, ReadingMustNotCreateTheKey) {
    const std::string before = mRegistry.Export();
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM1");
    EXPECT_EQ(mRegistry.Export(), before);
    Put("Other", kRegistryString, "x\0"s);
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM1");
    EXPECT_EQ(mRegistry.openKeys, 0);
}

TEST_F(CProgramSettingsTest, TheKeyPathKeepsEmptyMiddlePartsAndLosesOneFinalBackslash) {
    // clang-format off
    const std::array<std::string, 4> kCases[] = {
        {"Company", "Program", "Settings", "SOFTWARE\\Company\\Program\\Settings"},
        {"Company", "Program", "", "SOFTWARE\\Company\\Program"},
        {"", "Program", "Settings", "SOFTWARE\\\\Program\\Settings"},
        {"Company", "", "", "SOFTWARE\\Company\\"},
        {"Compañía", "P", "S", "SOFTWARE\\Compa\xf1\xed" "a\\P\\S"},
    };
    // clang-format on
    for (const auto& [company, program, section, path] : kCases) {
        mStore.RegBase = company;
        mStore.Program = program;
        mStore.Section = section;
        mStore.ReadEntry("x", "");
        EXPECT_EQ(mRegistry.path, path) << "read";
        mRegistry.path.clear();
        mStore.WriteEntry("x", "y");
        EXPECT_EQ(mRegistry.path, path) << "written";
        EXPECT_EQ(mRegistry.root, RegistryRoot::LocalMachine);
        EXPECT_EQ(mRegistry.access, 63u);
        EXPECT_EQ(mStore.ReadEntry("x", "lost"), "y");
    }
    mStore.RootKey = RegistryRoot::CurrentUser;
    EXPECT_EQ(mStore.ReadEntry("x", "none"), "none") << "the other root's value";
}

TEST_F(CProgramSettingsTest, AWriteStoresExactlyTheBytesAndOneNul) {
    mStore.WriteEntry("Port", "COM1 ");
    EXPECT_EQ(mRegistry.setBytes, "COM1 \0"s);
    EXPECT_EQ(mRegistry.setType, 1u);
    mStore.WriteEntry("Name", "a\0ñ"s);
    EXPECT_EQ(mRegistry.setBytes, "a\0\xf1\0"s);
    EXPECT_EQ(mStore.ReadEntry("Name", ""), "a\0ñ"s);
    EXPECT_EQ(mRegistry.openKeys, 0);
}

TEST_F(CProgramSettingsTest, ARefusingRegistryIsSilentAndReadsAsTheDefault) {
    Put("Port", kRegistryString, "COM7\0"s);
    mRegistry.refuse = true;
    mStore.WriteEntry("Port", "COM8");
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM1");
    mRegistry.refuse = false;
    mRegistry.refuseValues = true;
    mStore.WriteEntry("Port", "COM8");
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM7");
    EXPECT_EQ(mRegistry.openKeys, 0);
    EXPECT_TRUE(mPlatform.boxes.shown.empty());
}

TEST_F(CProgramSettingsTest, ARunTimeErrorIsToldUnderItsProcedureAndDoesNotEscape) {
    Put("Port", kRegistryString, "COM7\0"s);
    mRegistry.exhausted = true;
    EXPECT_EQ(mStore.ReadEntry("Port", "COM1"), "COM1");
    mStore.WriteEntry("Port", "COM8");
    ASSERT_EQ(mPlatform.boxes.shown.size(), 2u);
    EXPECT_EQ(mPlatform.boxes.shown[0].title, "GetKeyValue");
    EXPECT_EQ(mPlatform.boxes.shown[0].text, "Error: 7. Out of memory");
    EXPECT_EQ(mPlatform.boxes.shown[1].title, "SetKeyValue");
    EXPECT_EQ(mPlatform.boxes.shown[1].text, "Error: 7. Out of memory");
}

}  // namespace
}  // namespace vantor
