// Replaces a system call for the whole test program.
#pragma once

#include "platform/win32/services/Windows.hpp"

/// Defines the import address of the system call `call`, which the linker would otherwise take from
/// the system library. The second argument is the function that is called instead.
#define REPLACED(call, ...)                                       \
    extern "C" {                                                  \
    extern decltype(&::call) gReplaced##call asm("__imp_" #call); \
    decltype(&::call) gReplaced##call = __VA_ARGS__;              \
    }                                                             \
    static_assert(true)
