// The error handler's box, report file, record set and trace.
#include "app/base/CErrHandler.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "ReportingPlatform.hpp"

namespace vantor {
namespace {

const std::string kFile = "C:\\ERRORS.TXT";

class CErrHandlerTest : public testing::Test {
protected:
    void Fail(const std::string& procedure, const std::function<void()>& how) {
        Trapped(procedure, how);
    }
    void Fail(const std::string& procedure, ErrorNumber number) {
        Trapped(procedure, [number] { throw RuntimeError(number); });
    }
    std::string Report() { return mPlatform.files.ReadAll(kFile); }
    const std::vector<MessageBoxRequest>& Boxes() { return mPlatform.boxes.shown; }

    ReportingPlatform mPlatform;
    CErrHandler& mErrors = mPlatform.errors;
};

TEST_F(CErrHandlerTest, TheBoxMustNameProcedureLineNumberAndOperation) {
    Fail("frmMain.FlashIndicator", ErrorNumber::TypeMismatch);
    mErrors.CurrentOperation = "Opening the image";
    Fail("frmMain.doFlash", [] { throw RuntimeError(-7, "Of its own"); });
    ASSERT_EQ(Boxes().size(), 2u);
    EXPECT_EQ(Boxes()[0].text,
              "The following error has occurred in procedure: \r\n"
              "frmMain.FlashIndicator on line 0\r\n"
              "Error (13) Type mismatch");
    EXPECT_EQ(Boxes()[0].title, "Tessmar Vantor Update");
    EXPECT_EQ(Boxes()[0].icon, BoxIcon::Critical);
    EXPECT_EQ(Boxes()[1].text,
              "The following error has occurred in procedure: \r\n"
              "frmMain.doFlash on line 0\r\n"
              "Error (-7) Of its own\r\n"
              "Current Operation: Opening the image");
    EXPECT_EQ(mPlatform.boxes.beeps, 2);
}

TEST_F(CErrHandlerTest, TheReportListsTheWholeStackIndentedByDepth) {
    mErrors.CurrentOperation = "Reading";
    mErrors.IncludeExpandedInfo = true;
    Trapped("modStartup.Main", [this] {
        Trapped("", [this] { Fail("frmMain.FileToStringArray", ErrorNumber::PermissionDenied); });
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

TEST_F(CErrHandlerTest, OnlyTheLatestErrorStaysInTheReport) {
    Fail("a.First", ErrorNumber::DiskFull);
    Fail("a.Second", ErrorNumber::Overflow);
    EXPECT_EQ(Report().find("First"), std::string::npos);
    EXPECT_TRUE(Report().ends_with("---------------\r\n00a.Second\r\n\r\n"))
        << "without operation and expanded information the report ends behind the stack";
    mErrors.ClearLog();
    EXPECT_EQ(Report(), "");
}

TEST_F(CErrHandlerTest, AForgottenPopShowsInLaterReports) {
    mErrors.MaxProcStackItems(1);
    mErrors.Push("a.ForgetsItsPop");
    Fail("a.Next", ErrorNumber::Overflow);
    EXPECT_NE(Report().find("00a.ForgetsItsPop\r\n01  a.Next\r\n"), std::string::npos);
    mErrors.Pop();
    mErrors.Pop();
    Fail("a.Last", ErrorNumber::Overflow);
    EXPECT_NE(Report().find("00a.Last\r\n"), std::string::npos) << "one Pop too many did harm";
}

TEST_F(CErrHandlerTest, TheEventsComeAroundTheReportAndTheFirstCanCancelIt) {
    std::string order;
    mErrors.BeforeHandlerCalled = [&](bool&) {
        order += mPlatform.files.Exists(kFile) ? "late " : "before ";
    };
    mErrors.AfterHandlerCalled = [&] {
        order += mPlatform.files.Exists(kFile) && Boxes().size() == 1 ? "after" : "early";
    };
    Fail("a.b", ErrorNumber::Overflow);
    EXPECT_EQ(order, "before after");
    mPlatform.files.Delete(kFile);
    mErrors.BeforeHandlerCalled = [](bool& cancel) { cancel = true; };
    Fail("a.b", ErrorNumber::DiskFull);
    EXPECT_EQ(order, "before after");
    EXPECT_EQ(Boxes().size(), 1u);
    EXPECT_FALSE(mPlatform.files.Exists(kFile));
    EXPECT_EQ(mErrors.LastError().Number(), 61);
}

TEST_F(CErrHandlerTest, WithoutBoxesTheReportIsStillWrittenInAFolderMadeForIt) {
    mErrors.DisplayMsgOnError = false;
    mErrors.Destination("/new/folder\\errorlog.txt");
    Fail("a.b", ErrorNumber::Overflow);
    EXPECT_TRUE(mPlatform.files.Exists("/new/folder/errorlog.txt"));
    EXPECT_TRUE(Boxes().empty() && mPlatform.boxes.beeps == 0);
}

TEST_F(CErrHandlerTest, AReportThatCannotBeWrittenCostsNeitherBoxNorProgram) {
    mPlatform.files.FailOn(kFile, 70);
    bool after = false;
    mErrors.AfterHandlerCalled = [&after] { after = true; };
    Fail("a.b", ErrorNumber::Overflow);
    ASSERT_EQ(Boxes().size(), 1u) << "the failure to write is not told";
    EXPECT_EQ(Boxes()[0].text, ReportBox("a.b", "(6) Overflow"));
    EXPECT_TRUE(after);
}

class Records : public ErrorRecordSet {
public:
    std::string TypeName() const override { return "Records"; }
    void Open() override {
        if (!openError.empty()) throw RuntimeError(5, openError);
    }
    void AddNew() override { log += "AddNew|"; }
    void Field(std::string_view name, const std::string& value) override {
        log.append(name).append("=").append(value).append("|");
    }
    void Update() override { log += "Update"; }
    std::string openError;
    std::string log;
};

TEST_F(CErrHandlerTest, ARecordSetTakesTheFieldsOfTheReport) {
    const auto records = std::make_shared<Records>();
    mErrors.Destination(records);
    mErrors.CurrentOperation = "Op";
    mErrors.Push("a.Outer");
    Fail("a.b", ErrorNumber::Overflow);
    const std::string start =
        "AddNew|ErrorDate=2026-11-24 21:18:05|ErrorString=Overflow|ErrorNumber=6|ErrorLine=0|"
        "ErrorProc=a.b|CallStack=00a.Outer\r\n01  a.b\r\nCurrent Operation: Op|"
        "AdditionalInfo=Current Directory: /home/tech\r\nApp Title: Tessmar Vantor Update\r\n";
    EXPECT_EQ(records->log.substr(0, start.size()), start);
    EXPECT_TRUE(
        records->log.ends_with("App ProductName: Tessmar Vantor Update Utility\r\n|Update"));
    EXPECT_FALSE(mPlatform.files.Exists(kFile));
    mErrors.Pop();
}

TEST_F(CErrHandlerTest, ARecordSetThatIsMissingOrClosedIsToldBeforeTheErrorItself) {
    mErrors.Destination(std::shared_ptr<DestinationObject>());
    mErrors.ErrorsTable = "Log";
    Fail("a.b", ErrorNumber::Overflow);
    const auto records = std::make_shared<Records>();
    records->openError = "No provider";
    mErrors.Destination(records);
    Fail("a.b", ErrorNumber::Overflow);
    ASSERT_EQ(Boxes().size(), 4u);
    EXPECT_EQ(Boxes()[0].text,
              "Error handler cannot write to the [Log] errors table because the Destination "
              "recordset variable has not been initialized.");
    EXPECT_EQ(Boxes()[2].text, "Error opening recordset: No provider");
    EXPECT_EQ(Boxes()[3].text, ReportBox("a.b", "(6) Overflow"));
    EXPECT_EQ(records->log, "");
}

TEST_F(CErrHandlerTest, AnObjectThatIsNoRecordSetIsRefusedAndTheOldDestinationKept) {
    struct Picture : DestinationObject {
        std::string TypeName() const override { return "Picture"; }
    };
    const RuntimeError error = Raised([this] { mErrors.Destination(std::make_shared<Picture>()); });
    EXPECT_EQ(error.Description(), "Invalid object type: Picture");
    Fail("a.b", ErrorNumber::Overflow);
    EXPECT_TRUE(mPlatform.files.Exists(kFile));
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
    using Raise = std::function<void()>;
    const auto refused = [](std::errc code) {
        return [code] { throw std::system_error(std::make_error_code(code)); };
    };
    // clang-format off
    const std::pair<std::int32_t, Raise> kCases[] = {
        {7, [] { throw std::bad_alloc(); }},
        {7, [] { std::string().reserve(std::string().max_size() + 1); }},
        {9, [] { static_cast<void>(std::vector<int>().at(1)); }},
        {6, [] { throw std::overflow_error("x"); }},
        {5, [] { throw std::invalid_argument("x"); }},
        {53, refused(std::errc::no_such_file_or_directory)},
        {70, refused(std::errc::permission_denied)},
        {61, refused(std::errc::no_space_on_device)},
        {75, refused(std::errc::io_error)},
        {51, [] { throw 1; }},
    };
    // clang-format on
    for (const auto& [number, raise] : kCases) {
        Fail("a.b", raise);
        EXPECT_EQ(mErrors.LastError().Number(), number);
    }
    Fail("a.b", [] { throw std::logic_error("Told"); });
    EXPECT_EQ(Boxes().back().text, ReportBox("a.b", "(51) Told"));
}

TEST_F(CErrHandlerTest, AFailingExitIsReportedAndStillPopsItsName) {
    const auto fail = [](std::int32_t number) { return [number] { throw RuntimeError(number); }; };
    EXPECT_FALSE(Trapped("a.b", fail(13), fail(6)));
    ASSERT_EQ(Boxes().size(), 2u);
    EXPECT_EQ(Boxes()[0].text, ReportBox("a.b", "(13) Type mismatch"));
    EXPECT_EQ(Boxes()[1].text, ReportBox("a.b", "(6) Overflow"));
    Fail("a.Next", ErrorNumber::Overflow);
    EXPECT_NE(Report().find("\r\n00a.Next\r\n"), std::string::npos);
}

}  // namespace
}  // namespace vantor
