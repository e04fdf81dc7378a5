// The error traps. Window and class code contains no other `catch`: a procedure is written as one
// of the first four around a flat body, so that every error has exactly one way out of it. The
// fifth, `Guarded`, is for the procedures that the system calls.
#pragma once

#include <functional>
#include <string_view>

#include "support/RuntimeError.hpp"

namespace vantor {

/// Where trapped errors go. The one error handler of the process implements it.
class ErrorSink {
public:
    virtual ~ErrorSink() = default;
    /// A procedure named `name` ("frmMain.FlashIndicator") begins.
    virtual void Push(std::string_view name) = 0;
    /// The procedure pushed last ends.
    virtual void Pop() = 0;
    /// Reports the error now being handled (see PendingError). Never throws.
    virtual void HandleError() = 0;
    /// Shows `text` under `title` with an OK button and no icon. Never throws.
    virtual void ShowBox(std::string_view title, std::string_view text) = 0;
};

/// Installs the sink that all traps of the process report to; null removes it.
/// The sink is not owned and must outlive every trap. Returns the one installed before.
ErrorSink* SetErrorSink(ErrorSink* sink) noexcept;

/// Runs `body` as the procedure `name`; an error is handed to the error handler and ends the
/// procedure. `exit`, when given, runs on both exits, after a report and before the name is
/// popped; its own error is reported likewise. True when no error was reported.
bool Trapped(std::string_view name, const std::function<void()>& body,
             const std::function<void()>& exit = {});

/// Runs `body`; an error goes on to the caller with `source` as its source.
template <typename Body>
auto Raising(std::string_view source, Body&& body) {
    try {
        return body();
    } catch (...) {
        throw PendingError().WithSource(source);
    }
}

/// Runs `body`; an error is shown in the class's own box "Error: number. description", titled
/// `name`, and ends the procedure. True when there was none.
bool Boxed(std::string_view name, const std::function<void()>& body);

/// Runs a class's set-up or one of the support module's procedures; an error is shown under
/// `title` as "An error has occured in `where` " with its number, description and line.
bool BoxedSetup(std::string_view where, const std::function<void()>& body);

/// Runs one statement whose error is dropped on purpose, so that the next one still runs.
/// True when there was none, for the caller whose answer to any error is the same.
bool Ignoring(const std::function<void()>& step) noexcept;

/// Hands the error now being handled to the error handler, as one of the procedure `name`. Without
/// a handler the program ends as on any unhandled error.
void ReportPending(std::string_view name) noexcept;

/// Runs the body of a procedure that the system calls (a window procedure, say): no exception may
/// unwind the system's own frames. An error is handed to the error handler. Unlike `Trapped` this
/// puts `name` on the procedure stack only for the report, so that it may enclose any procedure.
/// True when there was none.
template <typename Body>
bool Guarded(std::string_view name, Body&& body) noexcept {
    try {
        body();
        return true;
    } catch (...) {
        ReportPending(name);
        return false;
    }
}

}  // namespace vantor
