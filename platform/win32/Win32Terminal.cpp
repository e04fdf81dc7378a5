#include "platform/win32/Win32Terminal.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>

#include "platform/win32/Win32Handle.hpp"

namespace vantor {
namespace {

// Shared with the control handler, which runs on a system thread.
std::atomic<std::uint32_t> gInterrupts = 0;
std::atomic<HANDLE> gWaitingThread = nullptr;

BOOL WINAPI OnControl(DWORD control) {
    if (control != CTRL_C_EVENT) return FALSE;
    gInterrupts.fetch_add(1);
    // Some consoles do not end their read on Ctrl-C, and pipes never do. Harmless without a read.
    if (const HANDLE thread = gWaitingThread) static_cast<void>(CancelSynchronousIo(thread));
    return TRUE;
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
        gWaitingThread = mThread.Get();
    }
    ~WaitingThread() { gWaitingThread = nullptr; }
    WaitingThread(const WaitingThread&) = delete;
    WaitingThread& operator=(const WaitingThread&) = delete;

private:
    Win32Handle mThread;
};

}  // namespace

// A program started with Ctrl-C disabled, as in the background, keeps it disabled.
Win32Terminal::Win32Terminal() {
    mTaken = gInterrupts;
    static_cast<void>(SetConsoleCtrlHandler(OnControl, TRUE));
}

Win32Terminal::~Win32Terminal() {
    static_cast<void>(SetConsoleCtrlHandler(OnControl, FALSE));
}

bool Win32Terminal::InputIsTerminal() const {
    return IsConsole(GetStdHandle(STD_INPUT_HANDLE));
}

bool Win32Terminal::OutputIsTerminal() const {
    return IsConsole(GetStdHandle(STD_OUTPUT_HANDLE));
}

unsigned Win32Terminal::Columns() const {
    constexpr unsigned kUnknown = 80;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0) return kUnknown;
    const int columns = info.srWindow.Right - info.srWindow.Left + 1;
    return columns > 0 ? static_cast<unsigned>(columns) : kUnknown;
}

void Win32Terminal::Write(std::string_view utf8) {
    WriteTo(STD_OUTPUT_HANDLE, utf8);
}

void Win32Terminal::WriteError(std::string_view utf8) {
    WriteTo(STD_ERROR_HANDLE, utf8);
}

Win32Terminal::Input Win32Terminal::ReadFromConsole(HANDLE console) {
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

Win32Terminal::Input Win32Terminal::ReadFromStream(HANDLE stream) {
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

Win32Terminal::Input Win32Terminal::ReadMore() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    return IsConsole(input) ? ReadFromConsole(input) : ReadFromStream(input);
}

std::optional<std::string> Win32Terminal::ReadLine() {
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

bool Win32Terminal::TakeInterrupt() {
    if (mTaken == gInterrupts) return false;
    ++mTaken;
    return true;
}

}  // namespace vantor
