#include "support/errors/RuntimeError.hpp"

#include <array>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <utility>

namespace vantor {
namespace {

struct NumberedText {
    ErrorNumber number;
    const char* text;
};

constexpr std::array kStandardTexts = {
    NumberedText{ErrorNumber::InvalidCall, "Invalid procedure call or argument"},
    NumberedText{ErrorNumber::Overflow, "Overflow"},
    NumberedText{ErrorNumber::OutOfMemory, "Out of memory"},
    NumberedText{ErrorNumber::SubscriptOutOfRange, "Subscript out of range"},
    NumberedText{ErrorNumber::DivisionByZero, "Division by zero"},
    NumberedText{ErrorNumber::TypeMismatch, "Type mismatch"},
    NumberedText{ErrorNumber::InternalError, "Internal error"},
    NumberedText{ErrorNumber::FileNotFound, "File not found"},
    NumberedText{ErrorNumber::DeviceIO, "Device I/O error"},
    NumberedText{ErrorNumber::DiskFull, "Disk full"},
    NumberedText{ErrorNumber::DeviceUnavailable, "Device unavailable"},
    NumberedText{ErrorNumber::PermissionDenied, "Permission denied"},
    NumberedText{ErrorNumber::PathFileAccess, "Path/File access error"},
    NumberedText{ErrorNumber::PathNotFound, "Path not found"},
    NumberedText{ErrorNumber::ObjectNotSet, "Object variable or With block variable not set"},
    NumberedText{ErrorNumber::InvalidFileFormat, "Invalid file format"},
    NumberedText{ErrorNumber::ResourceNotFound, "Resource not found"},
    NumberedText{ErrorNumber::InvalidPropertyValue, "Invalid property value"},
    NumberedText{ErrorNumber::ActionNotSupported, "Object doesn't support this action"},
    NumberedText{ErrorNumber::KeyAlreadyUsed,
                 "This key is already associated with an element of this collection"},
    NumberedText{ErrorNumber::InvalidPicture, "Invalid picture"},
};

RuntimeError FromSystemError(const std::error_code& code) {
    if (code == std::errc::no_such_file_or_directory)
        return RuntimeError(ErrorNumber::FileNotFound);
    if (code == std::errc::permission_denied) return RuntimeError(ErrorNumber::PermissionDenied);
    if (code == std::errc::no_space_on_device) return RuntimeError(ErrorNumber::DiskFull);
    return RuntimeError(ErrorNumber::PathFileAccess);
}

}  // namespace

std::string StandardDescription(std::int32_t number) {
    for (const NumberedText& entry : kStandardTexts)
        if (static_cast<std::int32_t>(entry.number) == number) return entry.text;
    return "Application-defined or object-defined error";
}

RuntimeError::RuntimeError(std::int32_t number, std::string description, std::string source)
    : mNumber(number),
      mDescription(description.empty() ? StandardDescription(number) : std::move(description)),
      mSource(std::move(source)) {}

RuntimeError::RuntimeError(ErrorNumber number, std::string description)
    : RuntimeError(static_cast<std::int32_t>(number), std::move(description)) {}

RuntimeError RuntimeError::WithSource(std::string_view source) const {
    return RuntimeError(mNumber, mDescription, std::string(source));
}

RuntimeError PendingError() {
    const std::exception_ptr pending = std::current_exception();
    if (!pending) return RuntimeError(ErrorNumber::InternalError);
    try {
        std::rethrow_exception(pending);
    } catch (const RuntimeError& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return RuntimeError(ErrorNumber::OutOfMemory);
    } catch (const std::length_error&) {
        return RuntimeError(ErrorNumber::OutOfMemory);
    } catch (const std::out_of_range&) {
        return RuntimeError(ErrorNumber::SubscriptOutOfRange);
    } catch (const std::overflow_error&) {
        return RuntimeError(ErrorNumber::Overflow);
    } catch (const std::invalid_argument&) {
        return RuntimeError(ErrorNumber::InvalidCall);
    } catch (const std::system_error& error) {
        return FromSystemError(error.code());
    } catch (const std::exception& error) {
        return RuntimeError(static_cast<std::int32_t>(ErrorNumber::InternalError), error.what());
    } catch (...) {
        return RuntimeError(ErrorNumber::InternalError);
    }
}

}  // namespace vantor
