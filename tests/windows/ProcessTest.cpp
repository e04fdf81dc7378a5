// The process as seen from outside. This program is started again with a job as its argument:
// by itself, and by the script around it, which communicates with it.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>

#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "tests/driver/App.hpp"

namespace vantor {
namespace {

std::wstring gDesktop = L"win32-tests";
constexpr int kInterrupted = 6;
constexpr const wchar_t* kSignal = L"Vantor signal of a test";
constexpr const char* kTitle = "Last words \\ of a test";

bool SignalTest() {
    return SetEvent(OpenEventW(EVENT_MODIFY_STATE, FALSE, kSignal)) != 0;
}

int DoJob(Process& process) {
    const std::string& job = process.Arguments().front();
    process.InstallUnhandledExceptionFilter(kTitle);
    if (job == "throw") throw std::runtime_error("¡Adiós!");
    if (job == "crash") RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
    const auto console = MakeWin32Console();
    if (job == "flash") {
        for (const char* const reason : {"An update before", "", "Updating Indicator"}) {
            console->HoldSystem(reason);
            const bool held = *reason != '\0';
            HWND window = nullptr;
            while (window == nullptr) window = FindWindowW(L"VantorEndOfSession", nullptr);
            if ((SendMessageW(window, WM_QUERYENDSESSION, 0, 0) == FALSE) != held ||
                SetThreadExecutionState(ES_SYSTEM_REQUIRED) !=
                    (held ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS))
                return 1;
        }
        SignalTest();
        while (!console->TakeInterrupt()) Sleep(1);
        Sleep(100);  // the last stage
        SignalTest();
        return kInterrupted;
    }
    if (job == "signal") return SignalTest() ? 0 : 1;
    // "echo"
    for (const std::string& argument : process.Arguments()) console->Write(argument + "|");
    for (auto line = console->ReadLine(); line; line = console->ReadLine())
        console->Write("<" + *line + ">");
    return 0;
}

PROCESS_INFORMATION Start(const std::wstring& job) {
    std::wstring command = L"\"" + ToWide(MakeWin32Process()->ExecutablePath()) + L"\" " + job;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.lpDesktop = gDesktop.data();
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &startup, &started) == 0)
        throw std::runtime_error("this program does not start again");
    CloseHandle(started.hThread);
    return started;
}

TEST(Process, AnUnhandledErrorIsNamedInABoxAndEndsTheProgram) {
    struct Case {
        const wchar_t* job;
        const wchar_t* words;
        DWORD status;
    };
    for (const auto& [job, words, status] :
         {Case{L"throw", L"Unhandled Exception: \u00a1Adi\u00f3s!", 3},
          Case{L"crash", L"Unhandled Exception: Access Violation", EXCEPTION_ACCESS_VIOLATION}}) {
        const Win32Handle process(Start(job).hProcess);
        HWND button = nullptr;
        while (button == nullptr && WaitForSingleObject(process.Get(), 10) == WAIT_TIMEOUT)
            button = GetDlgItem(FindWindowW(L"#32770", ToWide(kTitle).c_str()), IDOK);
        std::array<wchar_t, 128> text{};
        GetDlgItemTextW(GetParent(button), 0xffff, text.data(), static_cast<int>(text.size()));
        EXPECT_STREQ(text.data(), words);
        PostMessageW(button, BM_CLICK, 0, 0);
        DWORD ended = 0;
        WaitForSingleObject(process.Get(), INFINITE);
        GetExitCodeProcess(process.Get(), &ended);
        EXPECT_EQ(ended, status);
    }
}

TEST(Console, TheEndOfTheUsersSessionIsRefusedDuringAFlashAndComesAsTheInterruptKey) {
    const Win32Handle signal(CreateEventW(nullptr, FALSE, FALSE, kSignal));
    const Win32Handle process(Start(L"flash").hProcess);
    const HANDLE either[] = {signal.Get(), process.Get()};
    ASSERT_EQ(WaitForMultipleObjects(2, either, FALSE, 60'000), WAIT_OBJECT_0);
    const HWND window = FindWindowW(L"VantorEndOfSession", nullptr);
    SendMessageW(window, WM_ENDSESSION, FALSE, 0);  // another program has refused
    EXPECT_EQ(WaitForSingleObject(signal.Get(), 200), DWORD{WAIT_TIMEOUT});
    SendMessageW(window, WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(WaitForSingleObject(signal.Get(), 0), WAIT_OBJECT_0) << "ended before the last stage";
    DWORD ended = 0;
    WaitForSingleObject(process.Get(), INFINITE);
    GetExitCodeProcess(process.Get(), &ended);
    EXPECT_EQ(ended, DWORD{kInterrupted});
}

TEST(Shell, OpensWhatItIsGivenAndFollowsWhatItStarts) {
    const Win32Handle signal(CreateEventW(nullptr, FALSE, FALSE, kSignal));
    const auto shell = MakeWin32Shell();
    const ShellRequest request = {.file = MakeWin32Process()->ExecutablePath(),
                                  .parameters = "signal"};
    EXPECT_GE(shell->Execute(request), kFirstShellSuccess);
    EXPECT_EQ(WaitForSingleObject(signal.Get(), 60'000), WAIT_OBJECT_0);
    ShellProcess process = 0;
    EXPECT_GE(shell->Start(request, process), kFirstShellSuccess);
    EXPECT_EQ(WaitForSingleObject(signal.Get(), 60'000), WAIT_OBJECT_0);
    while (shell->IsActive(process)) Sleep(1);
    shell->Release(process);
    EXPECT_FALSE(shell->IsActive(process)) << "the handle is closed";
    EXPECT_LT(shell->Execute({.file = "C:\\no\\such.exe"}), kFirstShellSuccess);
    EXPECT_LT(shell->Start({}, process), kFirstShellSuccess);
    EXPECT_EQ(process, 0u);
}

}  // namespace
}  // namespace vantor

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const auto process = vantor::MakeWin32Process();
    if (argc > 1) return vantor::DoJob(*process);
    vantor::driver::EnterDesktop(vantor::gDesktop, L"1024x768");
    return RUN_ALL_TESTS();
}
