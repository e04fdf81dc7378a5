// Contract of Registry, as the settings require it.
#include <algorithm>

#include "tests/contract/Contract.hpp"

namespace vantor::contract {

using namespace std::string_literals;

class RegistryContract : public Contract {
protected:
    static constexpr RegistryRoot kRoot = RegistryRoot::CurrentUser;

    RegistryKey Create(const std::string& at) {
        RegistryKey key = 0;
        EXPECT_EQ(registry->CreateKey(kRoot, at, kRegistryAllButOwner, key), kRegistrySuccess);
        return key;
    }
    RegistryKey Open(const std::string& at, std::uint32_t access = kRegistryAllButOwner) {
        RegistryKey key = 0;
        EXPECT_EQ(registry->OpenKey(kRoot, at, access, key), kRegistrySuccess) << at;
        return key;
    }
    void Set(RegistryKey key, const std::string& name, std::uint32_t type, std::string_view bytes) {
        EXPECT_EQ(registry->SetValue(key, name, type, bytes), kRegistrySuccess) << name;
    }
    /// Queries size and value in two calls, as the settings do.
    std::string Query(RegistryKey key, const std::string& name, std::uint32_t type) {
        std::uint32_t found = 0;
        std::uint32_t size = 0;
        EXPECT_EQ(registry->QueryValue(key, name, found, nullptr, size), kRegistrySuccess);
        EXPECT_EQ(found, type);
        std::string bytes(size, '#');
        EXPECT_EQ(registry->QueryValue(key, name, found, bytes.data(), size), kRegistrySuccess);
        EXPECT_EQ(size, bytes.size());
        return bytes;
    }

    const std::string path = "Software\\Contract Tests";
};
INSTANTIATE_CONTRACT(RegistryContract);

TEST_P(RegistryContract, LookingForAMissingKeyMakesNone) {
    for (int attempt = 0; attempt < 2; ++attempt) {
        RegistryKey key = 4711;
        EXPECT_EQ(registry->OpenKey(kRoot, path + "\\Settings", kRegistryQueryValue, key),
                  kRegistryFileNotFound);
        EXPECT_EQ(key, 4711u) << "the caller's key was overwritten";
    }
}

TEST_P(RegistryContract, ValuesSurviveARestartByteForByte) {
    struct Value {
        const char* name;
        std::uint32_t type;
        std::string bytes;
    };
    std::string all = AllBytes();
    std::ranges::reverse(all);  // ends with a NUL, as a string does
    const std::vector<Value> values = {
        {"", kRegistryString, "default\0"s},
        {"Plain", kRegistryString, "38400\0"s},
        {"Empty", kRegistryString, "\0"s},
        {"Folder", kRegistryString, "C:\\a \"b\"\\\0"s},
        {"Scrambled", kRegistryString, "a\0\x01\xFF\x81z\0"s},
        {"Every byte", kRegistryString, all},
        {"Number", kRegistryDword, "\x02\x01\x00\xFF"s},
        {"Bytes", kRegistryBinary, all},
        {"No bytes", kRegistryBinary, ""},
        {"Contraseña \\\"", kRegistryString, "x\0"s},
    };
    RegistryKey key = Create(path + "\\Settings");
    const auto expectAll = [&] {
        for (const Value& value : values)
            EXPECT_EQ(Query(key, value.name, value.type), value.bytes) << value.name;
    };
    for (const Value& value : values) Set(key, value.name, value.type, value.bytes);
    expectAll();
    registry = restarted(*registry);
    key = Open(path + "\\Settings");
    expectAll();
}

TEST_P(RegistryContract, TheSizeOfAStringCountsItsNul) {
    const RegistryKey key = Create(path);
    Set(key, "Port", kRegistryString, "COM1\0"s);
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    EXPECT_EQ(registry->QueryValue(key, "Port", type, nullptr, size), kRegistrySuccess);
    EXPECT_EQ(size, 5u);
    std::string small(4, '#');
    size = 4;
    EXPECT_EQ(registry->QueryValue(key, "Port", type, small.data(), size), kRegistryMoreData);
    EXPECT_EQ(size, 5u);
    Set(key, "Port", kRegistryDword, "\1\0\0\0"s);
    EXPECT_EQ(Query(key, "Port", kRegistryDword), "\1\0\0\0"s) << "the new type did not stick";
}

TEST_P(RegistryContract, AKeyDoesWhatItWasOpenedForAndNoMore) {
    Set(Create(path), "Kept", kRegistryString, "old\0"s);
    const RegistryKey reader = Open(path, kRegistryQueryValue);
    EXPECT_EQ(registry->SetValue(reader, "Kept", kRegistryString, "new\0"s), kRegistryAccessDenied);
    EXPECT_EQ(Query(reader, "Kept", kRegistryString), "old\0"s);
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    const RegistryKey writer = Open(path, kRegistrySetValue);
    EXPECT_EQ(registry->QueryValue(writer, "Kept", type, nullptr, size), kRegistryAccessDenied);
    EXPECT_EQ(registry->QueryValue(reader, "Missing", type, nullptr, size), kRegistryFileNotFound);
    EXPECT_EQ(registry->CloseKey(writer), kRegistrySuccess);
    EXPECT_EQ(registry->SetValue(writer, "x", kRegistryString, "y\0"s), kRegistryInvalidHandle);
    EXPECT_EQ(registry->CloseKey(writer), kRegistryInvalidHandle);
}

TEST_P(RegistryContract, PathsAndNamesIgnoreCaseAndSpareBackslashes) {
    Set(Create(path + "\\One\\Two"), "Baud Rate", kRegistryString, "9600\0"s);
    for (const char* spelling : {"\\ONE\\two", "\\One\\Two\\", "\\one\\\\TWO"})
        EXPECT_EQ(Query(Open(path + spelling), "BAUD rate", kRegistryString), "9600\0"s)
            << spelling;
    Set(Create(path + "\\ONE\\TWO"), "baud rate", kRegistryString, "1200\0"s);
    EXPECT_EQ(Query(Open(path + "\\One\\Two"), "Baud Rate", kRegistryString), "1200\0"s);
}

}  // namespace vantor::contract
