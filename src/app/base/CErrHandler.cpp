#include "app/base/CErrHandler.hpp"

#include <algorithm>
#include <utility>

#include "app/base/modSupport.hpp"
#include "platform/Clock.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/Process.hpp"
#include "support/Conversions.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

constexpr const char* kLineEnd = "\r\n";

std::string Line(const std::string& content) {
    return content + kLineEnd;
}

std::string TraceFile(const Process& process) {
    return AppPath(process) + "trace.log";
}

}  // namespace

std::string ErrorLogPath(const Folders& folders) {
    return ProductDataFolder(folders) + "errorlog.txt";
}

CErrHandler::CErrHandler(const Services& services) : mServices(services) {
    // No sink is installed yet; this handler's own box reports a failed initialisation.
    ErrorSink* const before = SetErrorSink(this);
    BoxedSetup("Morvane.CErrHandler.Class_Initialize",
               [this] { mStack.reserve(mMaxProcStackItems); });
    SetErrorSink(before);
}

void CErrHandler::Destination(const std::shared_ptr<DestinationObject>& object) {
    auto records = std::dynamic_pointer_cast<ErrorRecordSet>(object);
    if (object && !records)
        throw RuntimeError(ErrorNumber::TypeMismatch, "Invalid object type: " + object->TypeName());
    mDestination = std::move(records);
}

void CErrHandler::MaxProcStackItems(std::size_t items) {
    mMaxProcStackItems = items;
    mStack.reserve(items);
}

void CErrHandler::TraceExecution(bool trace) {
    if (trace) mServices.files.WriteAll(TraceFile(mServices.process), {});
    mTraceExecution = trace;
}

void CErrHandler::Push(std::string_view name) {
    if (mStack.size() == mStack.capacity())
        mStack.reserve(mStack.size() + std::max<std::size_t>(mMaxProcStackItems, 1));
    mStack.emplace_back(name);
    if (mTraceExecution) Trace("> ", name);
}

void CErrHandler::Pop() {
    if (mStack.empty()) return;
    if (mTraceExecution) Trace("< ", mStack.back());
    mStack.pop_back();
}

void CErrHandler::Trace(std::string_view mark, std::string_view name) {
    // A failed write must not stop the traced procedure.
    Ignoring([&] {
        std::string line = std::to_string(mServices.clock.Milliseconds()) + " ";
        line.append(2 * (mStack.size() - 1), ' ').append(mark).append(name).append(kLineEnd);
        mServices.files.Append(TraceFile(mServices.process), line);
    });
}

void CErrHandler::HandleError() {
    Ignoring([this] {
        mLastError = PendingError();
        const std::string procedure = mStack.empty() ? std::string() : mStack.back();
        if (Title.empty()) Title = mApp.title;
        bool cancel = false;
        if (BeforeHandlerCalled) BeforeHandlerCalled(cancel);
        if (cancel) return;
        Ignoring(
            [&] { std::visit([&](const auto& to) { WriteReport(to, procedure); }, mDestination); });
        if (DisplayMsgOnError) ShowReport(procedure);
        if (AfterHandlerCalled) AfterHandlerCalled();
    });
}

void CErrHandler::ShowBox(std::string_view title, std::string_view text) {
    Ignoring(
        [&] { mServices.boxes.Show({.text = std::string(text), .title = std::string(title)}); });
}

void CErrHandler::ClearLog() {
    Ignoring([this] {
        if (const auto* path = std::get_if<std::string>(&mDestination))
            mServices.files.WriteAll(*path, {});
    });
}

void CErrHandler::ShowReport(const std::string& procedure) {
    std::string text = "The following error has occurred in procedure: \r\n" + procedure +
                       " on line " + std::to_string(mLastError.Line()) + "\r\nError (" +
                       std::to_string(mLastError.Number()) + ") " + mLastError.Description();
    if (!CurrentOperation.empty()) text += kLineEnd + OperationLine();
    mServices.boxes.Beep();
    mServices.boxes.Show({.text = text, .title = Title, .icon = BoxIcon::Critical});
}

std::string CErrHandler::OperationLine() const {
    return "Current Operation: " + CurrentOperation;
}

std::string CErrHandler::StackText() const {
    std::string text;
    for (std::size_t i = 0; i < mStack.size(); ++i) {
        if (mStack[i].empty()) continue;
        text += TwoDigits(static_cast<std::int32_t>(i)) + std::string(2 * i, ' ') + mStack[i] +
                kLineEnd;
    }
    return text;
}

std::string CErrHandler::ExpandedInfo() const {
    const std::string path = AppPath(mServices.process);
    return Line("Current Directory: " + mServices.folders.Current()) +
           Line("App Title: " + mApp.title) + Line("App CompanyName: " + mApp.companyName) +
           Line("App Major: " + std::to_string(mApp.major)) +
           Line("App Minor: " + std::to_string(mApp.minor)) +
           Line("App Revision: " + std::to_string(mApp.revision)) +
           Line("App Path: " + path.substr(0, path.size() - 1)) +
           Line("App ProductName: " + mApp.productName);
}

std::string CErrHandler::ReportText(const std::string& procedure) const {
    std::string text = Line(" Application Error Information") + Line(std::string(36, '=')) +
                       Line("Current Time   : " + FormatDateTime(mServices.clock.Now())) +
                       Line("Error String   : " + mLastError.Description()) +
                       Line("Error Number   : " + std::to_string(mLastError.Number())) +
                       Line("Error Line     : " + std::to_string(mLastError.Line())) +
                       Line("Error Procedure: " + procedure) + Line("") + Line("Procedure Stack") +
                       Line("---------------") + Line(StackText());
    if (!CurrentOperation.empty()) text += Line(OperationLine());
    if (IncludeExpandedInfo)
        text +=
            Line("") + Line("Additional Information") + Line(std::string(22, '-')) + ExpandedInfo();
    return text;
}

// The file holds only the latest error, which a technician is asked to send in.
void CErrHandler::WriteReport(const std::string& path, const std::string& procedure) {
    if (const std::string folder(FolderOf(path)); !folder.empty())
        Ignoring([&] { mServices.files.CreateFolders(folder); });
    // When another process locks the file against deletion, the report is appended.
    if (mServices.files.Exists(path)) Ignoring([&] { mServices.files.Delete(path); });
    mServices.files.Append(path, ReportText(procedure));
}

void CErrHandler::WriteReport(const std::shared_ptr<ErrorRecordSet>& records,
                              const std::string& procedure) {
    if (!records) {
        ShowBox(Title, "Error handler cannot write to the [" + ErrorsTable +
                           "] errors table because the Destination recordset "
                           "variable has not been initialized.");
        return;
    }
    try {
        records->Open();
    } catch (...) {
        ShowBox(Title, "Error opening recordset: " + PendingError().Description());
        return;
    }
    std::string stack = StackText();
    if (!CurrentOperation.empty()) stack += OperationLine();
    records->AddNew();
    records->Field("ErrorDate", FormatDateTime(mServices.clock.Now()));
    records->Field("ErrorString", mLastError.Description());
    records->Field("ErrorNumber", std::to_string(mLastError.Number()));
    records->Field("ErrorLine", std::to_string(mLastError.Line()));
    records->Field("ErrorProc", procedure);
    records->Field("CallStack", stack);
    records->Field("AdditionalInfo", ExpandedInfo());
    records->Update();
}

}  // namespace vantor
