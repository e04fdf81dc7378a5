// The error handler's box, report file, record set and trace; the filter for unhandled errors.
#include <gtest/gtest.h>

#include <map>
#include <new>
#include <stdexcept>
#include <system_error>

#include "app/frmMain.hpp"
#include "app/modStartup.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

/// Notes what is written; opening it fails on request.
struct Records : ErrorRecordSet {
    std::string TypeName() const override { return "Records"; }
    void Open() override {
        if (locked) throw RuntimeError(ErrorNumber::PermissionDenied);
    }
    void AddNew() override { notes += "new"; }
    void Field(std::string_view name, const std::string& value) override {
        notes += " " + std::string(name) + "=" + value;
    }
    void Update() override { notes += " updated"; }
    std::string notes;
    bool locked = false;
};
struct Picture : DestinationObject {
    std::string TypeName() const override { return "Picture"; }
};

struct Handler {
    ReportingPlatform platform;
    CErrHandler& errors = platform.errors;
    std::shared_ptr<Records> records = std::make_shared<Records>();
    std::string out;
};

using H = Handler;

std::function<void()> Raise(std::int32_t number) {
    return [number] { throw RuntimeError(number); };
}

/// Notes `event`, with the number of boxes shown and whether a report has been written before it.
void NoteEvent(H& h, const char* event) {
    h.out += Row(event, h.platform.boxes.shown.size(), h.platform.files.Exists("C:\\ERRORS.TXT"));
    h.out += " ";
}

const std::map<std::string, void (*)()> kThrown = {
    {"bad_alloc", [] { throw std::bad_alloc(); }},
    {"length_error", [] { throw std::length_error("x"); }},
    {"out_of_range", [] { static_cast<void>(std::vector<int>().at(1)); }},
    {"overflow_error", [] { throw std::overflow_error("x"); }},
    {"invalid_argument", [] { throw std::invalid_argument("x"); }},
    {"logic_error", [] { throw std::logic_error("Told"); }},
    {"int", [] { throw 1; }}};

const std::string kTrace = "/opt/vantor/trace.log";

const Verbs<Handler> kVerbs = {
    {"fails", [](H&, Argument procedure) { Trapped(procedure, Raise(6)); }},
    {"raises", [](H&, Argument number) { Trapped("a.b", Raise(std::stoi(number))); }},
    {"throws", [](H&, Argument type) { Trapped("a.b", kThrown.at(type)); }},
    {"throws-system-error",
     [](H&, Argument code) {
         Trapped("a.b", [&] { throw std::system_error(std::stoi(code), std::generic_category()); });
     }},
    {"fails-nested",
     [](H&, Argument) {
         const auto inner = [] { Trapped("a.Inner", Raise(70)); };
         Trapped("a.Outer", [&inner] { Trapped("", inner); });
     }},
    {"fails-at-exit",
     [](H& h, Argument) { h.out += FromBool(Trapped("a.b", Raise(13), Raise(6))) + " "; }},
    {"guarded", [](H&, Argument name) { Guarded(name, Raise(6)); }},
    {"runs",  // two nested procedures
     [](H& h, Argument) {
         const auto inner = [&h] { Trapped("a.Inner", [&h] { h.platform.clock.Sleep(500); }); };
         h.out += FromBool(Trapped("a.Outer", inner)) + " ";
     }},
    {"push", [](H& h, Argument name) { h.errors.Push(name); }},
    {"pop", [](H& h, Argument) { h.errors.Pop(); }},
    {"clear", [](H& h, Argument) { h.errors.ClearLog(); }},
    {"capacity", [](H& h, Argument items) { h.errors.MaxProcStackItems(std::stoul(items)); }},
    {"operation", [](H& h, Argument text) { h.errors.CurrentOperation = text; }},
    {"title", [](H& h, Argument text) { h.errors.Title = text; }},
    {"expanded", [](H& h, Argument) { h.errors.IncludeExpandedInfo = true; }},
    {"silent", [](H& h, Argument) { h.errors.DisplayMsgOnError = false; }},
    {"trace", [](H& h, Argument on) { h.errors.TraceExecution(on == "on"); }},
    {"trace-file", [](H& h, Argument text) { h.platform.files.Add(kTrace, text); }},
    {"trace-fails",
     [](H& h, Argument number) { h.platform.files.FailOn(kTrace, std::stoi(number)); }},
    {"traced", [](H& h, Argument) { h.out += h.platform.files.ReadAll(kTrace); }},
    {"to", [](H& h, Argument path) { h.errors.Destination(path); }},
    {"to-records", [](H& h, Argument) { h.errors.Destination(h.records); }},
    {"to-nothing",
     [](H& h, Argument) { h.errors.Destination(std::shared_ptr<DestinationObject>()); }},
    {"to-picture", [](H& h, Argument) { h.errors.Destination(std::make_shared<Picture>()); }},
    {"locked", [](H& h, Argument) { h.records->locked = true; }},
    {"records", [](H& h, Argument) { h.out += h.records->notes; }},
    {"held",  // a report that cannot be deleted
     [](H& h, Argument path) {
         h.platform.files.Add(path, "old\r\n");
         h.platform.files.Hold(path);
     }},
    {"unusable", [](H& h, Argument path) { h.platform.files.FailOn(path, 61); }},
    {"report", [](H& h, Argument path) { h.out += h.platform.files.ReadAll(path); }},
    {"events",
     [](H& h, Argument what) {
         h.errors.BeforeHandlerCalled = [&h, cancels = what == "cancel"](bool& cancel) {
             NoteEvent(h, "before");
             cancel = cancels;
         };
         h.errors.AfterHandlerCalled = [&h] { NoteEvent(h, "after"); };
     }},
    {"last", [](H& h, Argument) { h.out += Row(h.errors.LastError().Number()); }},
    {"beeps", [](H& h, Argument) { h.out += Row(h.platform.boxes.beeps, ""); }},
};

TEST(CErrHandler, ReportsAsTheTableSays) {
    ExpectTable("errors", kVerbs);
}

// The system has one filter for each process, however often the program starts in it.
TEST(Startup, TheFilterForUnhandledErrorsIsInstalledOnce) {
    int filters = 0;
    for (int start = 0; start < 2; ++start) {
        HeadlessPlatform platform;
        modStartup startup(platform.platform);
        ASSERT_TRUE(startup.Main());
        filters += platform.process.filters;
        startup.MainWindow()->Unload();
    }
    EXPECT_EQ(filters, 1);
}

}  // namespace
}  // namespace vantor
