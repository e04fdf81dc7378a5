// Child processes on Windows. They share the console of this process, which sends the interrupt key
// to each of them.
#include <array>
#include <cstddef>
#include <utility>

#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

class Win32ChildProcess : public ChildProcess {
public:
    Win32ChildProcess(Win32Handle process, Win32Handle output)
        : mProcess(std::move(process)), mOutput(std::move(output)) {}

    bool Read(std::string& output) override {
        std::array<char, 4096> buffer{};
        for (;;) {
            DWORD waiting = 0;
            if (PeekNamedPipe(mOutput.Get(), nullptr, 0, nullptr, &waiting, nullptr) == 0)
                return false;
            if (waiting == 0) return true;
            DWORD count = 0;
            if (ReadFile(mOutput.Get(), buffer.data(), static_cast<DWORD>(buffer.size()), &count,
                         nullptr) == 0)
                return false;
            output.append(buffer.data(), count);
        }
    }

    void CloseOutput() override { mOutput = Win32Handle(); }

    void Interrupt() override {}

    int ExitStatus() override {
        DWORD status = 1;
        WaitForSingleObject(mProcess.Get(), INFINITE);
        GetExitCodeProcess(mProcess.Get(), &status);
        return static_cast<int>(status);
    }

private:
    Win32Handle mProcess;
    Win32Handle mOutput;
};

/// `argument` as the part of a command line that CommandLineToArgvW gives back.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

/// The list of the only handles that a child inherits. Another child's end of a pipe among them
/// would keep that pipe open.
class InheritedHandles {
public:
    explicit InheritedHandles(std::array<HANDLE, 2> handles) : mHandles(handles) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        mList.resize(size);
        mReady = InitializeProcThreadAttributeList(Get(), 1, 0, &size) != 0;
        mReady = mReady &&
                 UpdateProcThreadAttribute(Get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST,
                                           mHandles.data(), sizeof mHandles, nullptr, nullptr) != 0;
    }
    ~InheritedHandles() {
        if (mReady) DeleteProcThreadAttributeList(Get());
    }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;

    LPPROC_THREAD_ATTRIBUTE_LIST Get() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(mList.data());
    }

private:
    std::array<HANDLE, 2> mHandles;
    std::vector<std::byte> mList;
    bool mReady = false;
};

class Win32ChildProcesses : public ChildProcesses {
public:
    std::unique_ptr<ChildProcess> Start(const std::string& program,
                                        const std::vector<std::string>& arguments) override {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        HANDLE readEnd = nullptr;
        HANDLE writeEnd = nullptr;
        if (CreatePipe(&readEnd, &writeEnd, &inherited, 0) == 0)
            throw RuntimeError(ErrorNumber::FileNotFound);
        Win32Handle output(readEnd);
        const Win32Handle childOutput(writeEnd);
        SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
        const Win32Handle nothing(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                                              OPEN_EXISTING, 0, nullptr));
        InheritedHandles handles({writeEnd, nothing.Get()});
        STARTUPINFOEXW start{};
        start.StartupInfo.cb = sizeof start;
        start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        start.StartupInfo.hStdInput = nothing.Get();
        start.StartupInfo.hStdOutput = writeEnd;
        start.StartupInfo.hStdError = nothing.Get();
        start.lpAttributeList = handles.Get();
        std::wstring commandLine = Quoted(ToWide(program));
        for (const std::string& argument : arguments)
            commandLine += L' ' + Quoted(ToWide(argument));
        PROCESS_INFORMATION process{};
        if (CreateProcessW(ToWide(program).c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                           EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr, &start.StartupInfo,
                           &process) == 0)
            throw RuntimeError(ErrorNumber::FileNotFound);
        const Win32Handle thread(process.hThread);
        return std::make_unique<Win32ChildProcess>(Win32Handle(process.hProcess),
                                                   std::move(output));
    }
};

}  // namespace

std::unique_ptr<ChildProcesses> MakeWin32ChildProcesses() {
    return std::make_unique<Win32ChildProcesses>();
}

}  // namespace vantor
