// The console of the program, or its redirected output and input.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>

#include "platform/win32/services/Win32EndOfSession.hpp"
#include "platform/win32/services/Win32Services.hpp"

#include <winternl.h>

namespace vantor {
namespace {

// Shared with the control handler, which runs on a system thread.
std::atomic<std::uint32_t> gInterrupts = 0;
std::atomic<bool> gEnding = false;
std::mutex gWaitingMutex;
HANDLE gWaitingThread = nullptr;  // under the mutex, which keeps the handle open while it is used

/// Cancels the read of the waiting thread: pipes and some consoles do not end it by themselves.
void EndRead() {
    // A thread that has not yet started its read has nothing to cancel.
    constexpr int kMostAttempts = 100;
    constexpr DWORD kPauseMs = 10;
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        {
            const std::lock_guard lock(gWaitingMutex);
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
        const std::lock_guard lock(gWaitingMutex);
        gWaitingThread = mThread.Get();
    }
    ~WaitingThread() {
        const std::lock_guard lock(gWaitingMutex);
        gWaitingThread = nullptr;
    }
    WaitingThread(const WaitingThread&) = delete;
    WaitingThread& operator=(const WaitingThread&) = delete;

private:
    Win32Handle mThread;
};

class Win32Console : public Console {
public:
    // A program started with Ctrl-C disabled, as in the background, keeps it disabled.
    Win32Console() { SetConsoleCtrlHandler(OnControl, TRUE); }
    // SetConsoleCtrlHandler waits for a running handler, and a close handler blocks until the exit.
    ~Win32Console() override {
        if (!gEnding) SetConsoleCtrlHandler(OnControl, FALSE);
    }

    bool InputIsTerminal() const override { return IsConsole(GetStdHandle(STD_INPUT_HANDLE)); }
    bool OutputIsTerminal() const override { return IsConsole(GetStdHandle(STD_OUTPUT_HANDLE)); }

    // No call of the Win32 API tells it without a write, and a write of no bytes reads as the end
    // of the output.
    bool ReaderGone() override {
        constexpr ULONG kConnected = 3;  // FILE_PIPE_CONNECTED_STATE
        IO_STATUS_BLOCK status{};
        FILE_PIPE_LOCAL_INFORMATION pipe{};
        return NT_SUCCESS(NtQueryInformationFile(GetStdHandle(STD_OUTPUT_HANDLE), &status, &pipe,
                                                 sizeof pipe, FilePipeLocalInformation)) &&
               pipe.NamedPipeState != kConnected;
    }

    unsigned Columns() const override {
        constexpr unsigned kUnknown = 80;
        CONSOLE_SCREEN_BUFFER_INFO info{};
        if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0)
            return kUnknown;
        const int columns = info.srWindow.Right - info.srWindow.Left + 1;
        return columns > 0 ? static_cast<unsigned>(columns) : kUnknown;
    }

    void Write(std::string_view utf8) override { WriteTo(STD_OUTPUT_HANDLE, utf8); }
    void WriteError(std::string_view utf8) override { WriteTo(STD_ERROR_HANDLE, utf8); }

    void ClearRowsAbove(unsigned rows) override {
        const HANDLE screen = GetStdHandle(STD_OUTPUT_HANDLE);
        CONSOLE_SCREEN_BUFFER_INFO info{};
        if (GetConsoleScreenBufferInfo(screen, &info) == 0) return;
        const auto up = static_cast<SHORT>(rows);
        const COORD start{0, static_cast<SHORT>(std::max(info.dwCursorPosition.Y - up, 0))};
        const auto cells = static_cast<DWORD>(info.dwSize.X) * rows;
        DWORD count = 0;
        FillConsoleOutputCharacterW(screen, L' ', cells, start, &count);
        SetConsoleCursorPosition(screen, start);
    }

    std::optional<std::string> ReadLine() override {
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

    bool LineWaits() override {
        if (!InputIsTerminal()) return false;
        if (mUnread.find('\n') != std::string::npos) return true;
        // Mouse movements and switches between windows are records too, before the key.
        const HANDLE console = GetStdHandle(STD_INPUT_HANDLE);
        DWORD count = 0;
        if (GetNumberOfConsoleInputEvents(console, &count) == 0 || count == 0) return false;
        std::vector<INPUT_RECORD> records(count);
        if (PeekConsoleInputW(console, records.data(), count, &count) == 0) return false;
        return std::any_of(records.begin(), records.begin() + count, [](const INPUT_RECORD& input) {
            return input.EventType == KEY_EVENT && input.Event.KeyEvent.bKeyDown != 0 &&
                   input.Event.KeyEvent.wVirtualKeyCode == VK_RETURN;
        });
    }

    bool TakeInterrupt() override {
        if (mTaken == gInterrupts) return false;
        ++mTaken;
        return true;
    }

    void HoldSystem(const std::string& reason) override {
        const bool hold = !reason.empty();
        if (hold && !mEndOfSession) mEndOfSession.emplace(NoteInterrupt);
        if (mEndOfSession) mEndOfSession->Refuse(ToWide(reason));
        // A failure only means that the machine may go to sleep.
        SetThreadExecutionState(hold ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS);
    }

private:
    enum class Input { More, Ended, Interrupted };

    Input ReadMore() {
        const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
        return IsConsole(input) ? ReadFromConsole(input) : ReadFromStream(input);
    }

    Input ReadFromConsole(HANDLE console) {
        const WaitingThread waiting;
        const std::uint32_t before = gInterrupts;
        std::array<wchar_t, 1024> buffer{};
        DWORD count = 0;
        SetLastError(ERROR_SUCCESS);
        const BOOL read = ReadConsoleW(console, buffer.data(), static_cast<DWORD>(buffer.size()),
                                       &count, nullptr);
        // Ctrl-C ends the read with success and no data; where it does not, a line begun
        // before it is discarded.
        if (GetLastError() == ERROR_OPERATION_ABORTED || before != gInterrupts)
            return Input::Interrupted;
        constexpr wchar_t kEndKey = 0x1A;  // Ctrl-Z at the start of a line
        if (read == 0 || count == 0 || (mUnread.empty() && buffer[0] == kEndKey))
            return Input::Ended;
        mUnread += ToUtf8({buffer.data(), count});
        return Input::More;
    }

    Input ReadFromStream(HANDLE stream) {
        const WaitingThread waiting;
        const std::uint32_t before = gInterrupts;
        std::array<char, 4096> buffer{};
        DWORD count = 0;
        if (ReadFile(stream, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) ==
            0)
            return GetLastError() == ERROR_OPERATION_ABORTED ? Input::Interrupted : Input::Ended;
        mUnread.append(buffer.data(), count);
        if (before != gInterrupts) return Input::Interrupted;
        return count == 0 ? Input::Ended : Input::More;
    }

    std::optional<Win32EndOfSession> mEndOfSession;  // from the first session on
    std::string mUnread;
    std::uint32_t mTaken = gInterrupts;
};

}  // namespace

std::unique_ptr<Console> MakeWin32Console() {
    return std::make_unique<Win32Console>();
}

}  // namespace vantor
