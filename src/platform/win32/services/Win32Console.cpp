#include "platform/win32/services/Win32Console.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>

#include "platform/win32/services/Win32Handle.hpp"

namespace vantor {
namespace {

// Shared with the control handler, which runs on a system thread.
std::atomic<std::uint32_t> gInterrupts = 0;
std::atomic<bool> gEnding = false;
SRWLOCK gWaitingLock = SRWLOCK_INIT;
HANDLE gWaitingThread = nullptr;  // under the lock, which keeps the handle open while it is used

class WaitingLock {
public:
    WaitingLock() { AcquireSRWLockExclusive(&gWaitingLock); }
    ~WaitingLock() { ReleaseSRWLockExclusive(&gWaitingLock); }
    WaitingLock(const WaitingLock&) = delete;
    WaitingLock& operator=(const WaitingLock&) = delete;
};

/// Cancels the read of the waiting thread: pipes and some consoles do not end it by themselves.
void EndRead() {
    // A thread that has not yet started its read has nothing to cancel.
    constexpr int kMostAttempts = 100;
    constexpr DWORD kPauseMs = 10;
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        {
            const WaitingLock lock;
            if (gWaitingThread == nullptr || CancelSynchronousIo(gWaitingThread) != 0) return;
        }
        Sleep(kPauseMs);
    }
}

void NoteInterrupt() {
    gInterrupts.fetch_add(1);
    EndRead();
}

BOOL WINAPI OnControl(DWORD control) {
    switch (control) {
        case CTRL_C_EVENT:
            NoteInterrupt();
            return TRUE;
        case CTRL_CLOSE_EVENT:
        case CTRL_LOGOFF_EVENT:
        case CTRL_SHUTDOWN_EVENT:
            gEnding = true;
            NoteInterrupt();
            // Windows terminates the process when this returns, or after its own time limit.
            // Until then the flash session can end and the process exit normally.
            Sleep(Win32EndOfSession::kLongestHoldMs);
            return TRUE;
        default:
            return FALSE;
    }
}

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetFileType(handle) == FILE_TYPE_CHAR && GetConsoleMode(handle, &mode) != 0;
}

void WriteToConsole(HANDLE console, std::wstring_view text) {
    constexpr std::size_t kMostAtOnce = 8192;  // consoles reject writes of 64 KB
    while (!text.empty()) {
        DWORD count = 0;
        if (WriteConsoleW(console, text.data(),
                          static_cast<DWORD>(std::min(text.size(), kMostAtOnce)), &count,
                          nullptr) == 0 ||
            count == 0)
            return;
        text.remove_prefix(count);
    }
}

void WriteTo(DWORD which, std::string_view utf8) {
    const HANDLE handle = GetStdHandle(which);
    if (IsConsole(handle)) return WriteToConsole(handle, ToWide(utf8));
    while (!utf8.empty()) {
        DWORD count = 0;
        if (WriteFile(handle, utf8.data(), static_cast<DWORD>(utf8.size()), &count, nullptr) == 0 ||
            count == 0)
            return;
        utf8.remove_prefix(count);
    }
}

/// Publishes this thread's handle to other threads while it waits.
class WaitingThread {
public:
    WaitingThread() : mThread(OpenThread(THREAD_TERMINATE, FALSE, GetCurrentThreadId())) {
        const WaitingLock lock;
        gWaitingThread = mThread.Get();
    }
    ~WaitingThread() {
        const WaitingLock lock;
        gWaitingThread = nullptr;
    }
    WaitingThread(const WaitingThread&) = delete;
    WaitingThread& operator=(const WaitingThread&) = delete;

private:
    Win32Handle mThread;
};

}  // namespace

// A program started with Ctrl-C disabled, as in the background, keeps it disabled.
Win32Console::Win32Console() {
    mTaken = gInterrupts;
    static_cast<void>(SetConsoleCtrlHandler(OnControl, TRUE));
}

// SetConsoleCtrlHandler waits for a running handler, and a close handler blocks until the exit.
Win32Console::~Win32Console() {
    if (!gEnding) static_cast<void>(SetConsoleCtrlHandler(OnControl, FALSE));
}

bool Win32Console::InputIsTerminal() const {
    return IsConsole(GetStdHandle(STD_INPUT_HANDLE));
}

bool Win32Console::OutputIsTerminal() const {
    return IsConsole(GetStdHandle(STD_OUTPUT_HANDLE));
}

unsigned Win32Console::Columns() const {
    constexpr unsigned kUnknown = 80;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0) return kUnknown;
    const int columns = info.srWindow.Right - info.srWindow.Left + 1;
    return columns > 0 ? static_cast<unsigned>(columns) : kUnknown;
}

void Win32Console::Write(std::string_view utf8) {
    WriteTo(STD_OUTPUT_HANDLE, utf8);
}

void Win32Console::WriteError(std::string_view utf8) {
    WriteTo(STD_ERROR_HANDLE, utf8);
}

Win32Console::Input Win32Console::ReadFromConsole(HANDLE console) {
    const WaitingThread waiting;
    const std::uint32_t before = gInterrupts;
    std::array<wchar_t, 1024> buffer{};
    DWORD count = 0;
    SetLastError(ERROR_SUCCESS);
    const BOOL read =
        ReadConsoleW(console, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr);
    // Ctrl-C ends the read with success and no data; where it does not, a line begun
    // before it is discarded.
    if (GetLastError() == ERROR_OPERATION_ABORTED || before != gInterrupts)
        return Input::Interrupted;
    constexpr wchar_t kEndKey = 0x1A;  // Ctrl-Z at the start of a line
    if (read == 0 || count == 0 || (mUnread.empty() && buffer[0] == kEndKey)) return Input::Ended;
    mUnread += ToUtf8({buffer.data(), count});
    return Input::More;
}

Win32Console::Input Win32Console::ReadFromStream(HANDLE stream) {
    const WaitingThread waiting;
    const std::uint32_t before = gInterrupts;
    std::array<char, 4096> buffer{};
    DWORD count = 0;
    if (ReadFile(stream, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) == 0)
        return GetLastError() == ERROR_OPERATION_ABORTED ? Input::Interrupted : Input::Ended;
    mUnread.append(buffer.data(), count);
    if (before != gInterrupts) return Input::Interrupted;
    return count == 0 ? Input::Ended : Input::More;
}

Win32Console::Input Win32Console::ReadMore() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    return IsConsole(input) ? ReadFromConsole(input) : ReadFromStream(input);
}

std::optional<std::string> Win32Console::ReadLine() {
    std::size_t end = mUnread.find('\n');
    for (; end == std::string::npos; end = mUnread.find('\n')) {
        const Input input = ReadMore();
        if (input == Input::Interrupted) return std::nullopt;
        if (input == Input::Ended) break;
    }
    if (end == std::string::npos && mUnread.empty()) return std::nullopt;
    std::string line = mUnread.substr(0, end);
    mUnread.erase(0, end == std::string::npos ? end : end + 1);
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

bool Win32Console::TakeInterrupt() {
    if (mTaken == gInterrupts) return false;
    ++mTaken;
    return true;
}

void Win32Console::HoldSystem(const std::string& reason) {
    const bool hold = !reason.empty();
    if (hold && !mEndOfSession) mEndOfSession.emplace(NoteInterrupt);
    if (mEndOfSession) mEndOfSession->Refuse(ToWide(reason));
    // A failure only means that the machine may go to sleep.
    static_cast<void>(
        SetThreadExecutionState(hold ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS));
}

}  // namespace vantor
