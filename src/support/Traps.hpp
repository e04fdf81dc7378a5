// The error traps. Window and class code contains no other `catch`: each procedure wraps its body
// in one of the first four, so that every error leaves it in exactly one way. The fifth, `Guarded`,
// is for callbacks from the system.
#pragma once

#include <string_view>

#include "support/FunctionRef.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

/// Receives trapped errors. The error handler of the process implements it.
class ErrorSink {
public:
    virtual ~ErrorSink() = default;
    /// A procedure named `name` ("frmMain.FlashIndicator") begins.
    virtual void Push(std::string_view name) = 0;
    /// The procedure pushed last ends.
    virtual void Pop() = 0;
    /// Reports the error being handled (see PendingError). Never throws.
    virtual void HandleError() = 0;
    /// Shows `text` under `title` with an OK button and no icon. Never throws.
    virtual void ShowBox(std::string_view title, std::string_view text) = 0;
};

/// Installs the process-wide sink of all traps; null removes it. Returns the previous one.
/// The sink is not owned and must outlive every trap.
ErrorSink* SetErrorSink(ErrorSink* sink) noexcept;

/// Runs `body` as the procedure `name`. An error is passed to the sink and ends the procedure.
/// `exit`, if given, runs in either case, after the report and before the name is popped;
/// its own error is reported too. Returns true when no error was reported.
bool Trapped(std::string_view name, FunctionRef<void()> body);
bool Trapped(std::string_view name, FunctionRef<void()> body, FunctionRef<void()> exit);

/// Runs `body`; rethrows an error with `source` as its source.
template <typename Body>
auto Raising(std::string_view source, Body&& body) {
    try {
        return body();
    } catch (...) {
        throw PendingError().WithSource(source);
    }
}

/// Runs `body`. An error is shown in a box "Error: number. description", titled `name`,
/// and ends the procedure. Returns true when there was none.
bool Boxed(std::string_view name, FunctionRef<void()> body);

/// Runs the initialisation of a class, or a procedure of the support module. An error is shown
/// as "An error has occured in `where` " with its number, description and line.
void BoxedSetup(std::string_view where, FunctionRef<void()> body);

/// Runs one statement and ignores its error, so that the next one still runs.
/// Returns true when there was none, for callers that treat all errors alike.
bool Ignoring(FunctionRef<void()> step) noexcept;

/// Passes the current exception to the sink as an error of the procedure `name`. Without a sink the
/// program terminates as on any unhandled exception.
void ReportPending(std::string_view name) noexcept;

/// Runs the body of a callback from the system (such as a window procedure): no exception may
/// unwind the system's stack frames. An error is passed to the sink. Unlike `Trapped`, `name` is on
/// the procedure stack only during the report, so that any procedure can be nested inside.
template <typename Body>
void Guarded(std::string_view name, Body&& body) noexcept {
    try {
        body();
    } catch (...) {
        ReportPending(name);
    }
}

}  // namespace vantor
