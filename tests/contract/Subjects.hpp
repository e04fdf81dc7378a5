// What the contract suites run against. Each suite asks for its subjects twice: those in memory,
// which every machine can run, and the native ones of the system that the tests are built for.
// A platform's file implements the Native... functions and nothing else.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/CodePage.hpp"
#include "platform/CompiledStrings.hpp"
#include "platform/Files.hpp"
#include "platform/MessagePump.hpp"
#include "platform/Registry.hpp"
#include "platform/SerialPort.hpp"
#include "tests/TemporaryFolder.hpp"

namespace vantor::contract {

/// One implementation, made anew for each test.
template <typename Subject>
struct Maker {
    std::string name;  ///< letters and digits: it becomes part of the tests' names
    std::function<std::unique_ptr<Subject>()> make;
};
/// What the test runner shows of a maker.
template <typename Subject>
void PrintTo(const Maker<Subject>& maker, std::ostream* stream) {
    *stream << maker.name;
}
template <typename Subject>
using Makers = std::vector<Maker<Subject>>;

/// A service that needs nothing around it.
template <typename Service>
class Plain {
public:
    virtual ~Plain() = default;
    virtual Service& Get() = 0;
};
using ClockSubject = Plain<Clock>;
using CodePageSubject = Plain<CodePage>;
using PumpSubject = Plain<MessagePump>;

/// The usual way to make one: a `Made` object owned by the subject.
template <typename Service, typename Made>
class Owning : public Plain<Service> {
public:
    Service& Get() override { return mMade; }

private:
    Made mMade;
};

class FilesSubject : public Plain<Files> {
public:
    /// An existing folder, empty at first, without "\" or "/" at its end. Removed with the subject.
    virtual std::string Folder() const = 0;
};

/// The system's own files, in a folder of their own.
template <typename Made>
class HostFiles : public FilesSubject {
public:
    Files& Get() override { return mFiles; }
    std::string Folder() const override { return mFolder.Path().string(); }

private:
    TemporaryFolder mFolder;
    Made mFiles;
};

class RegistrySubject : public Plain<Registry> {
public:
    /// A path below the current user's root where nothing exists at first and everything may be
    /// written. What was made there is removed before the subject is used again.
    virtual std::string Path() const = 0;
    /// Gives up the service and all its handles, and gives one that a program started now would
    /// see: it knows only what has been stored.
    virtual void Restart() = 0;
};

class StringsSubject : public Plain<StringTable> {
public:
    /// The language that the table has to answer in. Where it is that of the whole process, the
    /// subject reports what the process was started with and the suite is run once for each.
    virtual Language Expected() const = 0;
};

/// The other end of a serial line.
class WireEnd {
public:
    virtual ~WireEnd() = default;
    virtual void Send(std::string_view bytes) = 0;
    /// `count` bytes from the port; fewer when no more arrive within two seconds.
    virtual std::string Receive(std::size_t count) = 0;
    /// Takes the device away under an open port.
    virtual void HangUp() = 0;
};

class SerialSubject : public Plain<SerialPorts> {
public:
    /// A port that can be opened, and one that does not exist.
    virtual std::string PortName() const = 0;
    virtual std::string MissingPortName() const = 0;
    /// The far end of `PortName()`; null where there is none, and the tests that need it are
    /// skipped.
    virtual WireEnd* FarEnd() = 0;
    /// The pump that notifications come from.
    virtual MessagePump& Pump() = 0;
    /// Passes a little time, so that bytes can travel.
    virtual void Wait() = 0;
};

Makers<ClockSubject> HeadlessClocks();
Makers<CodePageSubject> HeadlessCodePages();
Makers<FilesSubject> HeadlessFileSystems();
Makers<PumpSubject> HeadlessPumps();
Makers<RegistrySubject> HeadlessRegistries();
Makers<StringsSubject> HeadlessStringTables();
Makers<SerialSubject> HeadlessSerialLines();

// May be empty where the system has no implementation of its own.
Makers<ClockSubject> NativeClocks();
Makers<CodePageSubject> NativeCodePages();
Makers<FilesSubject> NativeFileSystems();
Makers<PumpSubject> NativePumps();
Makers<RegistrySubject> NativeRegistries();
Makers<StringsSubject> NativeStringTables();
Makers<SerialSubject> NativeSerialLines();

/// A maker of subjects that need nothing to be made.
template <typename Subject, typename Made>
Maker<Subject> MakerOf(std::string name) {
    return {std::move(name), [] { return std::make_unique<Made>(); }};
}

}  // namespace vantor::contract

/// Instantiates `suite` for the in-memory and the native subjects of one kind.
#define INSTANTIATE_CONTRACT(suite, headless, native)                               \
    GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(suite);                           \
    INSTANTIATE_TEST_SUITE_P(Headless, suite, testing::ValuesIn(headless()),        \
                             [](const auto& tested) { return tested.param.name; }); \
    INSTANTIATE_TEST_SUITE_P(Native, suite, testing::ValuesIn(native()),            \
                             [](const auto& tested) { return tested.param.name; })
