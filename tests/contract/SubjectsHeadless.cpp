// The subjects in memory, which run on every machine.
#include <gtest/gtest.h>

#include "platform/headless/HeadlessFiles.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "platform/portable/CodePage1252.hpp"
#include "platform/portable/RegistryHive.hpp"
#include "tests/contract/Subjects.hpp"

namespace vantor::contract {
namespace {

class MemoryFiles : public FilesSubject {
public:
    MemoryFiles() { mFiles.CreateFolders(Folder()); }
    Files& Get() override { return mFiles; }
    std::string Folder() const override { return "C:\\Test"; }

private:
    HeadlessFiles mFiles;
};

/// `Restart` is a round trip through the text form, on which the stored registries depend.
class MemoryRegistry : public RegistrySubject {
public:
    Registry& Get() override { return *mHive; }
    std::string Path() const override { return "Software\\Contract"; }
    void Restart() override {
        const std::string text = mHive->Export();
        mHive = std::make_unique<RegistryHive>();
        EXPECT_EQ(mHive->Import(text), 0u);
    }

private:
    std::unique_ptr<RegistryHive> mHive = std::make_unique<RegistryHive>();
};

template <Language language>
class Compiled : public StringsSubject {
public:
    StringTable& Get() override { return mStrings; }
    Language Expected() const override { return language; }

private:
    CompiledStrings mStrings{language};
};

/// An in-memory line: implements the side of the port and the side of the test.
class MemoryWire : public FarEnd, public WireEnd {
public:
    void Opened(const LineSettings&) override { mToPort.clear(); }
    void Closed() override {}
    void Receive(std::string_view bytes) override { mFromPort += bytes; }
    std::string Transmit() override { return std::exchange(mToPort, {}); }
    bool HungUp() const override { return mHungUp; }

    void Send(std::string_view bytes) override { mToPort += bytes; }
    std::string Receive(std::size_t count) override {
        std::string bytes = mFromPort.substr(0, count);
        mFromPort.erase(0, count);
        return bytes;
    }
    void HangUp() override { mHungUp = true; }

private:
    std::string mToPort;
    std::string mFromPort;
    bool mHungUp = false;
};

class VirtualPump : public PumpSubject {
public:
    MessagePump& Get() override { return mPump; }

private:
    HeadlessClock mClock;
    HeadlessPump mPump{mClock};
};

class MemoryLine : public SerialSubject {
public:
    MemoryLine() {
        mPorts.Plug(PortName(), mWire);
        mPorts.LimitWrites(1000);
    }
    SerialPorts& Get() override { return mPorts; }
    std::string PortName() const override { return "COM5"; }
    std::string MissingPortName() const override { return "COM6"; }
    WireEnd* FarEnd() override { return &mWire; }
    MessagePump& Pump() override { return mPump; }
    void Wait() override { mClock.Sleep(1); }

private:
    HeadlessClock mClock;
    HeadlessPump mPump{mClock};
    MemoryWire mWire;
    HeadlessSerialPorts mPorts{mPump};
};

}  // namespace

Makers<ClockSubject> HeadlessClocks() {
    return {MakerOf<ClockSubject, Owning<Clock, HeadlessClock>>("Virtual")};
}

Makers<CodePageSubject> HeadlessCodePages() {
    return {MakerOf<CodePageSubject, Owning<CodePage, CodePage1252>>("Tables")};
}

Makers<FilesSubject> HeadlessFileSystems() {
    return {MakerOf<FilesSubject, MemoryFiles>("Memory")};
}

Makers<PumpSubject> HeadlessPumps() {
    return {MakerOf<PumpSubject, VirtualPump>("Virtual")};
}

Makers<RegistrySubject> HeadlessRegistries() {
    return {MakerOf<RegistrySubject, MemoryRegistry>("Hive")};
}

Makers<StringsSubject> HeadlessStringTables() {
    return {MakerOf<StringsSubject, Compiled<Language::English>>("English"),
            MakerOf<StringsSubject, Compiled<Language::Spanish>>("Spanish")};
}

Makers<SerialSubject> HeadlessSerialLines() {
    return {MakerOf<SerialSubject, MemoryLine>("Wire")};
}

}  // namespace vantor::contract
