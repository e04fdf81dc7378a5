// The subjects (implementations under test) of the contract suites. Each suite runs on the headless
// subjects, available on every machine, and on the native ones of the target system. The
// Subjects*.cpp of a platform implements the Native... functions only.
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
#include "platform/Files.hpp"
#include "platform/MessagePump.hpp"
#include "platform/Registry.hpp"
#include "platform/SerialPort.hpp"
#include "platform/portable/CompiledStrings.hpp"
#include "tests/TemporaryFolder.hpp"

namespace vantor::contract {

/// Factory of one implementation; each test gets a new instance.
template <typename Subject>
struct Maker {
    std::string name;  ///< letters and digits only: part of the test names
    std::function<std::unique_ptr<Subject>()> make;
};
/// GoogleTest printer for a maker.
template <typename Subject>
void PrintTo(const Maker<Subject>& maker, std::ostream* stream) {
    *stream << maker.name;
}
template <typename Subject>
using Makers = std::vector<Maker<Subject>>;

/// A subject that provides one service.
template <typename Service>
class Plain {
public:
    virtual ~Plain() = default;
    virtual Service& Get() = 0;
};
using ClockSubject = Plain<Clock>;
using CodePageSubject = Plain<CodePage>;
using PumpSubject = Plain<MessagePump>;

/// A subject that owns the implementation `Made`.
template <typename Service, typename Made>
class Owning : public Plain<Service> {
public:
    Service& Get() override { return mMade; }

private:
    Made mMade;
};

class FilesSubject : public Plain<Files> {
public:
    /// An existing, initially empty folder, without trailing "\" or "/". Removed with the subject.
    virtual std::string Folder() const = 0;
};

/// The file system of the host, in a temporary folder.
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
    /// A writable, initially empty path under the current user's root. Its contents are removed
    /// before the subject is used again.
    virtual std::string Path() const = 0;
    /// Discards the service and its handles and opens a new one, as a restarted program does: only
    /// stored data remains.
    virtual void Restart() = 0;
};

class StringsSubject : public Plain<StringTable> {
public:
    /// The expected language of the table. If the language is per process, the subject returns the
    /// one the process was started in, and the suite runs once per language.
    virtual Language Expected() const = 0;
};

/// The far end of a serial line.
class WireEnd {
public:
    virtual ~WireEnd() = default;
    virtual void Send(std::string_view bytes) = 0;
    /// Reads `count` bytes from the port; fewer after a time-out of at most 500 ms without input.
    virtual std::string Receive(std::size_t count) = 0;
    /// Removes the device while the port is open.
    virtual void HangUp() = 0;
};

class SerialSubject : public Plain<SerialPorts> {
public:
    /// Names of an existing port and of one that does not exist.
    virtual std::string PortName() const = 0;
    virtual std::string MissingPortName() const = 0;
    /// The far end of `PortName()`; null if there is none: tests that need it are skipped.
    virtual WireEnd* FarEnd() = 0;
    /// The message pump that delivers notifications.
    virtual MessagePump& Pump() = 0;
    /// Waits about 1 ms so that bytes can arrive.
    virtual void Wait() = 0;
};

Makers<ClockSubject> HeadlessClocks();
Makers<CodePageSubject> HeadlessCodePages();
Makers<FilesSubject> HeadlessFileSystems();
Makers<PumpSubject> HeadlessPumps();
Makers<RegistrySubject> HeadlessRegistries();
Makers<StringsSubject> HeadlessStringTables();
Makers<SerialSubject> HeadlessSerialLines();

// Empty where the system has no native implementation.
Makers<ClockSubject> NativeClocks();
Makers<CodePageSubject> NativeCodePages();
Makers<FilesSubject> NativeFileSystems();
Makers<PumpSubject> NativePumps();
Makers<RegistrySubject> NativeRegistries();
Makers<StringsSubject> NativeStringTables();
Makers<SerialSubject> NativeSerialLines();

/// A maker for a default-constructible subject.
template <typename Subject, typename Made>
Maker<Subject> MakerOf(std::string name) {
    return {std::move(name), [] { return std::make_unique<Made>(); }};
}

}  // namespace vantor::contract

/// Instantiates `suite` for the headless and the native subjects of one kind.
#define INSTANTIATE_CONTRACT(suite, headless, native)                               \
    GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(suite);                           \
    INSTANTIATE_TEST_SUITE_P(Headless, suite, testing::ValuesIn(headless()),        \
                             [](const auto& tested) { return tested.param.name; }); \
    INSTANTIATE_TEST_SUITE_P(Native, suite, testing::ValuesIn(native()),            \
                             [](const auto& tested) { return tested.param.name; })
