// The running process: arguments, program file, single instance, unhandled exceptions.
#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <map>

#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "support/errors/RuntimeError.hpp"
// Requires the types of <windows.h>.
#include <shellapi.h>

namespace vantor {
namespace {

// Allocated beforehand and never freed: the handler may run at any time and must not allocate.
std::array<wchar_t, 128> gTitle{};

struct ExceptionName {
    DWORD code;
    const wchar_t* name;
};

constexpr ExceptionName kExceptionNames[] = {
    {EXCEPTION_ACCESS_VIOLATION, L"Access Violation"},
    {EXCEPTION_DATATYPE_MISALIGNMENT, L"Datatype Misalignment"},
    {EXCEPTION_BREAKPOINT, L"Breakpoint"},
    {EXCEPTION_SINGLE_STEP, L"Single Step"},
    {EXCEPTION_ARRAY_BOUNDS_EXCEEDED, L"Array Bounds Exceeded"},
    {EXCEPTION_FLT_DENORMAL_OPERAND, L"Float Denormal Operand"},
    {EXCEPTION_FLT_DIVIDE_BY_ZERO, L"Float Divide By Zero"},
    {EXCEPTION_FLT_INEXACT_RESULT, L"Float Inexact Result"},
    {EXCEPTION_FLT_INVALID_OPERATION, L"Float Invalid Operation"},
    {EXCEPTION_FLT_OVERFLOW, L"Float Overflow"},
    {EXCEPTION_FLT_STACK_CHECK, L"Float Stack Check"},
    {EXCEPTION_FLT_UNDERFLOW, L"Float Underflow"},
    {EXCEPTION_INT_DIVIDE_BY_ZERO, L"Integer Divide By Zero"},
    {EXCEPTION_INT_OVERFLOW, L"Integer Overflow"},
    {EXCEPTION_PRIV_INSTRUCTION, L"Privileged Instruction"},
    {EXCEPTION_IN_PAGE_ERROR, L"In Page Error"},
    {EXCEPTION_ILLEGAL_INSTRUCTION, L"Illegal Instruction"},
    {EXCEPTION_NONCONTINUABLE_EXCEPTION, L"Noncontinuable Exception"},
    {EXCEPTION_STACK_OVERFLOW, L"Stack Overflow"},
    {EXCEPTION_INVALID_DISPOSITION, L"Invalid Disposition"},
    {EXCEPTION_GUARD_PAGE, L"Guard Page Violation"},
    {EXCEPTION_INVALID_HANDLE, L"Invalid Handle"},
    {CONTROL_C_EXIT, L"Control-C Exit"},
};

const wchar_t* NameOf(DWORD code) {
    for (const ExceptionName& entry : kExceptionNames)
        if (entry.code == code) return entry.name;
    return L"Unknown Exception";
}

void WriteLastWords(const wchar_t* words) {
    std::array<char, 1024> line{};
    std::size_t length = 0;
    for (const wchar_t* part : {static_cast<const wchar_t*>(gTitle.data()), L": ", words, L"\n"}) {
        const int room = static_cast<int>(line.size() - length);
        const int got =
            WideCharToMultiByte(CP_UTF8, 0, part, -1, line.data() + length, room, nullptr, nullptr);
        if (got > 0) length += static_cast<std::size_t>(got) - 1;  // its NUL is overwritten
    }
    DWORD count = 0;
    // A failed write is ignored: there is no other channel to report it.
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(length), &count,
              nullptr);
}

DWORD WINAPI ShowBox(void* words) noexcept {
    return static_cast<DWORD>(MessageBoxW(nullptr, static_cast<const wchar_t*>(words),
                                          gTitle.data(),
                                          MB_OK | MB_ICONERROR | MB_TASKMODAL | MB_SETFOREGROUND));
}

/// `what` must be short: the buffer is fixed. The box runs on a thread of its own: the caller's
/// stack may be used up, and the box would dispatch the messages of the caller's thread, so that
/// timers and ports went on in a damaged program.
void SayLastWords(const wchar_t* what) {
    std::array<wchar_t, 512> words{};
    std::size_t length = 0;
    for (const wchar_t* part : {L"Unhandled Exception: ", what})
        for (; *part != L'\0' && length + 1 < words.size(); ++part) words[length++] = *part;
    const Win32Handle box(CreateThread(nullptr, 0, ShowBox, words.data(), 0, nullptr));
    DWORD answer = 0;
    if (!box.IsOpen() || WaitForSingleObject(box.Get(), INFINITE) != WAIT_OBJECT_0 ||
        GetExitCodeThread(box.Get(), &answer) == 0 || answer != IDOK)
        WriteLastWords(words.data());
}

[[noreturn]] void End(DWORD exitCode) {
    TerminateProcess(GetCurrentProcess(), exitCode);
    std::abort();  // not reached
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    SayLastWords(NameOf(code));
    End(code);
}

[[noreturn]] void OnTerminate() {
    std::wstring what = L"Unknown Exception";
    if (const std::exception_ptr pending = std::current_exception()) {
        try {
            std::rethrow_exception(pending);
        } catch (const std::exception& error) {
            what = ToWide(error.what());
        } catch (...) {
            // It has no text; the default above is used.
        }
    }
    SayLastWords(what.c_str());
    constexpr DWORD kAborted = 3;  // the exit code of abort in the C library
    End(kAborted);
}

class Win32Process : public Process {
public:
    Win32Process() {
        int count = 0;
        const Owned<wchar_t**, LocalFree> arguments(CommandLineToArgvW(GetCommandLineW(), &count));
        if (!arguments) return;
        for (int i = 1; i < count; ++i) mArguments.push_back(ToUtf8(arguments.get()[i]));
    }

    const std::vector<std::string>& Arguments() const override { return mArguments; }

    std::string ExecutablePath() const override {
        constexpr std::size_t kLongestPath = 32768;
        std::wstring path(kLongestPath, L'\0');
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), kLongestPath);
        if (length == 0 || length >= path.size()) throw RuntimeError(ErrorNumber::FileNotFound);
        path.resize(length);
        return ToUtf8(path);
    }

    bool AnotherInstanceRuns(const std::string& title) override {
        if (mPlaces.contains(title)) return false;
        std::wstring name = ToWide(title);
        std::replace(name.begin(), name.end(), L'\\', L'-');  // it separates namespaces
        Win32Handle place(CreateMutexW(nullptr, FALSE, (L"Local\\" + name).c_str()));
        const DWORD systemError = GetLastError();
        if (!place.IsOpen()) return systemError == ERROR_ACCESS_DENIED;  // belongs to another user
        if (systemError == ERROR_ALREADY_EXISTS) return true;
        mPlaces.emplace(title, std::move(place));
        return false;
    }

    void InstallUnhandledExceptionFilter(const std::string& title) override {
        const std::wstring wide = ToWide(title);
        const std::size_t length = wide.copy(gTitle.data(), gTitle.size() - 1);
        gTitle[length] = L'\0';
        // The handlers also run after a stack overflow. On failure the system's own report remains.
        ULONG handlerBytes = 65536;
        SetThreadStackGuarantee(&handlerBytes);
        std::set_terminate(OnTerminate);
        SetUnhandledExceptionFilter(OnUnhandledException);
    }

private:
    std::vector<std::string> mArguments;
    std::map<std::string, Win32Handle> mPlaces;  // by title, held until this process ends
};

}  // namespace

std::unique_ptr<Process> MakeWin32Process() {
    return std::make_unique<Win32Process>();
}

}  // namespace vantor
