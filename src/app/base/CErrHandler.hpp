// The error reporter of the program: the stack of running procedures, the message box and
// the report. It shows and writes errors; it does not decide how a procedure continues.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "app/base/AppInfo.hpp"
#include "support/Traps.hpp"

namespace vantor {

class Clock;
class Files;
class Folders;
class MessageBoxes;
class Process;

/// Any object that may be assigned as a destination. Only a record set is accepted.
class DestinationObject {
public:
    virtual ~DestinationObject() = default;
    virtual std::string TypeName() const = 0;
};

/// A database table for error records. Its operations may raise anything.
class ErrorRecordSet : public DestinationObject {
public:
    virtual void Open() = 0;
    virtual void AddNew() = 0;
    virtual void Field(std::string_view name, const std::string& value) = 0;
    virtual void Update() = 0;
};

/// The report file of the program: "TSMR\CALDOR\errorlog.txt" below the user's
/// application-data folder. The folder is created when a report is written.
std::string ErrorLogPath(const Folders& folders);

class CErrHandler : public ErrorSink {
public:
    struct Services {
        Clock& clock;
        Files& files;
        Folders& folders;
        MessageBoxes& boxes;
        Process& process;
    };

    /// `services` must outlive the handler.
    explicit CErrHandler(const Services& services);

    /// The application's title, shown above every box; default: that of the application.
    std::string Title;
    /// Show the message box.
    bool DisplayMsgOnError = false;
    /// Add the "Additional Information" section to the report.
    bool IncludeExpandedInfo = false;
    /// The current operation; reported when set.
    std::string CurrentOperation;
    /// Name of the table in messages about the record set.
    std::string ErrorsTable = "Errors";

    /// Raised before the report; setting `cancel` suppresses it.
    std::function<void(bool& cancel)> BeforeHandlerCalled;
    /// Raised after the report, unless it was cancelled.
    std::function<void()> AfterHandlerCalled;

    /// The destination of reports: the path of the report file ("C:\ERRORS.TXT" initially),
    /// or a record set. Any other object raises "Invalid object type: " and its type name;
    /// a null pointer is a record set that is not assigned yet.
    void Destination(std::string path) { mDestination = std::move(path); }
    void Destination(const std::shared_ptr<DestinationObject>& object);
    const std::variant<std::string, std::shared_ptr<ErrorRecordSet>>& Destination() const {
        return mDestination;
    }

    /// Reserved capacity of the procedure stack; deeper nesting grows it by the same amount.
    void MaxProcStackItems(std::size_t items);
    std::size_t MaxProcStackItems() const { return mMaxProcStackItems; }

    /// Enabling it replaces "trace.log" in the program's folder by an empty file. Every start and
    /// end of a procedure is then logged there, one line each, with the clock time in milliseconds.
    void TraceExecution(bool trace);
    bool TraceExecution() const { return mTraceExecution; }

    /// Number, description and line of the last reported error.
    const RuntimeError& LastError() const { return mLastError; }

    void Push(std::string_view name) override;
    void Pop() override;
    void HandleError() override;
    void ShowBox(std::string_view title, std::string_view text) override;

    /// Empties the report file. A record set keeps its records, which other programs may use.
    void ClearLog();

private:
    std::string StackText() const;
    std::string OperationLine() const;
    std::string ExpandedInfo() const;
    std::string ReportText(const std::string& procedure) const;
    void WriteReport(const std::string& path, const std::string& procedure);
    void WriteReport(const std::shared_ptr<ErrorRecordSet>& records, const std::string& procedure);
    void ShowReport(const std::string& procedure);
    void Trace(std::string_view mark, std::string_view name);

    Services mServices;
    AppInfo mApp;
    std::vector<std::string> mStack;
    std::size_t mMaxProcStackItems = 100;
    std::variant<std::string, std::shared_ptr<ErrorRecordSet>> mDestination = "C:\\ERRORS.TXT";
    bool mTraceExecution = false;
    RuntimeError mLastError{0};
};

}  // namespace vantor
