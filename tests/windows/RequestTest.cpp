// Requests to a device whose driver keeps them.
#include "platform/win32/services/Win32Request.hpp"

#include <gtest/gtest.h>

namespace vantor {
namespace {

constexpr ULONG_PTR kPending = 0x103;  // STATUS_PENDING

TEST(Request, ADriverThatNeverEndsACancelledOneKeepsItsMemoryAndDoesNotHoldTheProgram) {
    // Not issued to a driver, so this request never ends.
    const Win32Handle device(CreateFileW(L"NUL", GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                         FILE_FLAG_OVERLAPPED, nullptr));
    auto request = std::make_unique<Win32Request>();
    Win32Request* const memory = request.get();
    request->Fresh()->Internal = kPending;
    const ULONGLONG start = GetTickCount64();
    EXPECT_FALSE(EndRequest(device.Get(), request, 100));
    EXPECT_LT(GetTickCount64() - start, 30000u);
    EXPECT_EQ(request, nullptr);
    EXPECT_FALSE(memory->HasEnded());
    delete memory;  // no driver uses it
}

TEST(Request, OneThatEndsInTimeOrWhenCancelledComesBack) {
    auto request = std::make_unique<Win32Request>();
    SetEvent(request->done.Get());
    EXPECT_TRUE(EndRequest(nullptr, request, 0));
    ASSERT_NE(request, nullptr);
    const Win32Handle pipe(CreateNamedPipeW(L"\\\\.\\pipe\\VantorRequestTest",
                                            PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                                            PIPE_TYPE_BYTE, 1, 64, 64, 0, nullptr));
    ASSERT_EQ(ConnectNamedPipe(pipe.Get(), request->Fresh()), 0);
    ASSERT_EQ(GetLastError(), static_cast<DWORD>(ERROR_IO_PENDING));
    EXPECT_FALSE(EndRequest(pipe.Get(), request, 10));
    ASSERT_NE(request, nullptr);
    EXPECT_TRUE(request->HasEnded());
}

}  // namespace
}  // namespace vantor
