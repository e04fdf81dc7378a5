// The numbered run-time error that every procedure raises, and its mapping from exceptions of
// the standard library. Does not report errors; the traps and their sink do.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace vantor {

/// The run-time error numbers that this program raises or tests for.
enum class ErrorNumber : std::int32_t {
    InvalidCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    InternalError = 51,
    FileNotFound = 53,
    DeviceIO = 57,
    DiskFull = 61,
    DeviceUnavailable = 68,
    PermissionDenied = 70,
    PathFileAccess = 75,
    PathNotFound = 76,
    ObjectNotSet = 91,
    InvalidFileFormat = 321,
    ResourceNotFound = 326,
    InvalidPropertyValue = 380,
    ActionNotSupported = 445,
    KeyAlreadyUsed = 457,
    InvalidPicture = 481,
};

/// Base of the error numbers of business objects (0x80040000).
inline constexpr std::int32_t kObjectError = -2147221504;

/// Standard description of `number`, used when an error has none of its own; "Application-defined
/// or object-defined error" for an unknown number.
std::string StandardDescription(std::int32_t number);

/// An error with the number, description and source that the reports show.
class RuntimeError : public std::exception {
public:
    /// An empty `description` selects the standard one of `number`.
    explicit RuntimeError(std::int32_t number, std::string description = {},
                          std::string source = {});
    explicit RuntimeError(ErrorNumber number, std::string description = {});

    std::int32_t Number() const noexcept { return mNumber; }
    const std::string& Description() const noexcept { return mDescription; }
    const std::string& Source() const noexcept { return mSource; }
    /// Line of the failing statement. Procedures carry no line numbers, so it is always 0.
    std::int32_t Line() const noexcept { return 0; }

    RuntimeError WithSource(std::string_view source) const;
    bool Is(ErrorNumber number) const noexcept {
        return mNumber == static_cast<std::int32_t>(number);
    }

    const char* what() const noexcept override { return mDescription.c_str(); }

private:
    std::int32_t mNumber;
    std::string mDescription;
    std::string mSource;
};

/// The exception being handled. Standard-library exceptions map to run-time error numbers
/// (std::bad_alloc 7, std::out_of_range 9, std::overflow_error 6 ...). Call it from a catch block
/// only; elsewhere it returns error 51.
RuntimeError PendingError();

}  // namespace vantor
