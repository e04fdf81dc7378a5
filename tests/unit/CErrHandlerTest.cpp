// The error handler's box, report file, record set and trace.
#include "app/base/CErrHandler.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <system_error>

#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

const std::string kFile = "C:\\ERRORS.TXT";

class CErrHandlerTest : public testing::Test {
protected:
    static std::function<void()> Raise(ErrorNumber number) {
        return [number] { throw RuntimeError(number); };
    }
    void Overflow(const std::string& procedure) {
        Trapped(procedure, Raise(ErrorNumber::Overflow));
    }
    std::string Report() { return mPlatform.files.ReadAll(kFile); }

    ReportingPlatform mPlatform;
    CErrHandler& mErrors = mPlatform.errors;
};

const std::string kOverflowBox = ReportBox("a.b", "(6) Overflow");

TEST_F(CErrHandlerTest, TheBoxMustNameProcedureLineNumberAndOperation) {
    Trapped("frmMain.FlashIndicator", Raise(ErrorNumber::TypeMismatch));
    mErrors.CurrentOperation = "Opening the image";
    Trapped("frmMain.doFlash", [] { throw RuntimeError(-7, "Of its own"); });
    EXPECT_EQ(Told(mPlatform), (Texts{"stop|Tessmar Vantor Update|"
                                      "The following error has occurred in procedure: \r\n"
                                      "frmMain.FlashIndicator on line 0\r\n"
                                      "Error (13) Type mismatch",
                                      "stop|Tessmar Vantor Update|"
                                      "The following error has occurred in procedure: \r\n"
                                      "frmMain.doFlash on line 0\r\n"
                                      "Error (-7) Of its own\r\n"
                                      "Current Operation: Opening the image"}));
    EXPECT_EQ(mPlatform.boxes.beeps, 2);
}

TEST_F(CErrHandlerTest, TheReportListsTheWholeStackIndentedByDepth) {
    mErrors.CurrentOperation = "Reading";
    mErrors.IncludeExpandedInfo = true;
    Trapped("modStartup.Main", [] {
        Trapped("",
                [] { Trapped("frmMain.FileToStringArray", Raise(ErrorNumber::PermissionDenied)); });
    });
    const AppInfo app;
    const std::string version = "App Major: " + std::to_string(app.major) +
                                "\r\nApp Minor: " + std::to_string(app.minor) +
                                "\r\nApp Revision: " + std::to_string(app.revision) + "\r\n";
    EXPECT_EQ(Report(),
              " Application Error Information\r\n"
              "====================================\r\n"
              "Current Time   : 2026-11-24 21:18:05\r\n"
              "Error String   : Permission denied\r\n"
              "Error Number   : 70\r\n"
              "Error Line     : 0\r\n"
              "Error Procedure: frmMain.FileToStringArray\r\n"
              "\r\n"
              "Procedure Stack\r\n"
              "---------------\r\n"
              "00modStartup.Main\r\n"
              "02    frmMain.FileToStringArray\r\n"
              "\r\n"
              "Current Operation: Reading\r\n"
              "\r\n"
              "Additional Information\r\n"
              "----------------------\r\n"
              "Current Directory: /home/tech\r\n"
              "App Title: Tessmar Vantor Update\r\n"
              "App CompanyName: Tessmar Instruments\r\n" +
                  version +
                  "App Path: /opt/vantor\r\n"
                  "App ProductName: Tessmar Vantor Update Utility\r\n");
}

TEST_F(CErrHandlerTest, OnlyTheLatestErrorStaysInTheReportAndAForgottenPopShows) {
    Overflow("a.First");
    Overflow("a.Second");
    EXPECT_EQ(Report().find("First"), std::string::npos);
    EXPECT_TRUE(Report().ends_with("---------------\r\n00a.Second\r\n\r\n"))
        << "without operation and expanded information the report ends behind the stack";
    mErrors.MaxProcStackItems(1);
    mErrors.Push("a.ForgetsItsPop");
    Overflow("a.Next");
    EXPECT_NE(Report().find("00a.ForgetsItsPop\r\n01  a.Next\r\n"), std::string::npos);
    mErrors.Pop();
    mErrors.Pop();
    Overflow("a.Last");
    EXPECT_NE(Report().find("00a.Last\r\n"), std::string::npos) << "one Pop too many did harm";
    mErrors.ClearLog();
    EXPECT_EQ(Report(), "");
}

TEST_F(CErrHandlerTest, TheEventsComeAroundTheReportAndTheFirstCanCancelIt) {
    std::string order;
    const auto done = [this] { return Told(mPlatform).size() + mPlatform.files.Exists(kFile); };
    mErrors.BeforeHandlerCalled = [&](bool&) { order += "before" + std::to_string(done()); };
    mErrors.AfterHandlerCalled = [&] { order += " after" + std::to_string(done()); };
    Overflow("a.b");
    EXPECT_EQ(order, "before0 after2");
    mPlatform.files.Delete(kFile);
    mErrors.BeforeHandlerCalled = [](bool& cancel) { cancel = true; };
    Trapped("a.b", Raise(ErrorNumber::DiskFull));
    EXPECT_EQ(order, "before0 after2");
    EXPECT_EQ(done(), 1u) << "a box or a report although cancelled";
    EXPECT_EQ(mErrors.LastError().Number(), 61);
}

TEST_F(CErrHandlerTest, BoxAndReportComeWithoutEachOther) {
    mPlatform.files.FailOn(kFile, 70);
    bool after = false;
    mErrors.AfterHandlerCalled = [&after] { after = true; };
    Overflow("a.b");
    EXPECT_EQ(Told(mPlatform), Texts{kOverflowBox}) << "the failure to write is not told";
    EXPECT_TRUE(after);
    mErrors.DisplayMsgOnError = false;
    mErrors.Destination("/new/folder\\errorlog.txt");
    Overflow("a.b");
    EXPECT_TRUE(mPlatform.files.Exists("/new/folder/errorlog.txt")) << "in a folder made for it";
    EXPECT_TRUE(mPlatform.boxes.shown.size() == 1 && mPlatform.boxes.beeps == 1);
}

TEST_F(CErrHandlerTest, AReportThatCannotBeDeletedIsAddedTo) {
    mPlatform.files.Add(kFile, "old\r\n");
    mPlatform.files.Hold(kFile);
    Overflow("a.b");
    EXPECT_TRUE(Report().starts_with("old\r\n Application Error Information\r\n"));
}

TEST_F(CErrHandlerTest, TheTraceStartsAnewAndStopsWithTheSwitch) {
    const std::string trace = "/opt/vantor/trace.log";
    mPlatform.files.Add(trace, "old");
    mErrors.TraceExecution(true);
    Trapped("a.Outer", [this] { Trapped("a.Inner", [this] { mPlatform.clock.Set(2500); }); });
    const std::string expected =
        "1000 > a.Outer\r\n1000   > a.Inner\r\n2500   < a.Inner\r\n2500 < a.Outer\r\n";
    EXPECT_EQ(mPlatform.files.ReadAll(trace), expected);
    mPlatform.files.FailOn(trace, 61);
    EXPECT_TRUE(Trapped("a.Untraceable", [] {})) << "a full disk must not stop what is traced";
    mPlatform.files.FailOn(trace, 0);
    mErrors.TraceExecution(false);
    Trapped("a.Later", [] {});
    EXPECT_EQ(mPlatform.files.ReadAll(trace), expected);
}

TEST_F(CErrHandlerTest, ErrorsOfTheStandardLibraryKeepTheirMeaning) {
    const auto refused = [](std::errc code) {
        return [code] { throw std::system_error(std::make_error_code(code)); };
    };
    const std::pair<std::int32_t, std::function<void()>> kCases[] = {
        {7, [] { throw std::bad_alloc(); }},
        {9, [] { static_cast<void>(std::vector<int>().at(1)); }},
        {5, [] { throw std::invalid_argument("x"); }},
        {53, refused(std::errc::no_such_file_or_directory)},
        {75, refused(std::errc::io_error)},
        {51, [] { throw 1; }}};
    for (const auto& [number, raise] : kCases) {
        Trapped("a.b", raise);
        EXPECT_EQ(mErrors.LastError().Number(), number);
    }
    Trapped("a.b", [] { throw std::logic_error("Told"); });
    EXPECT_EQ(Told(mPlatform).back(), ReportBox("a.b", "(51) Told"));
}

TEST_F(CErrHandlerTest, AFailingExitIsReportedAndStillPopsItsName) {
    EXPECT_FALSE(Trapped("a.b", Raise(ErrorNumber::TypeMismatch), Raise(ErrorNumber::Overflow)));
    EXPECT_EQ(Told(mPlatform), (Texts{ReportBox("a.b", "(13) Type mismatch"), kOverflowBox}));
    Overflow("a.Next");
    EXPECT_NE(Report().find("\r\n00a.Next\r\n"), std::string::npos);
}

}  // namespace
}  // namespace vantor
