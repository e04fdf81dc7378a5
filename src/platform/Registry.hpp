// The registry with Win32 semantics: result codes instead of exceptions, two-step queries,
// and values as 8-bit bytes, on which the stored format is defined.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

/// Predefined root keys, Win32 values.
enum class RegistryRoot : std::uint32_t {
    CurrentUser = 0x80000001u,   // HKEY_CURRENT_USER
    LocalMachine = 0x80000002u,  // HKEY_LOCAL_MACHINE
};

using RegistryKey = std::uint64_t;  ///< an open key; 0 is none
using RegistryResult = std::int32_t;

// Result codes, Win32 values.
inline constexpr RegistryResult kRegistrySuccess = 0;        // ERROR_SUCCESS
inline constexpr RegistryResult kRegistryFileNotFound = 2;   // ERROR_FILE_NOT_FOUND
inline constexpr RegistryResult kRegistryAccessDenied = 5;   // ERROR_ACCESS_DENIED
inline constexpr RegistryResult kRegistryInvalidHandle = 6;  // ERROR_INVALID_HANDLE
inline constexpr RegistryResult kRegistryWriteFault = 29;    // ERROR_WRITE_FAULT
inline constexpr RegistryResult kRegistryMoreData = 234;     // ERROR_MORE_DATA
inline constexpr RegistryResult kRegistryCorrupt = 1015;     // ERROR_REGISTRY_CORRUPT

// Value types, Win32 values.
inline constexpr std::uint32_t kRegistryString = 1;  // REG_SZ, stored with its terminating NUL
inline constexpr std::uint32_t kRegistryBinary = 3;  // REG_BINARY
inline constexpr std::uint32_t kRegistryDword = 4;   // REG_DWORD, 4 bytes, little-endian

// Access masks, Win32 values.
inline constexpr std::uint32_t kRegistryQueryValue = 0x1;
inline constexpr std::uint32_t kRegistrySetValue = 0x2;
inline constexpr std::uint32_t kRegistryWrite = 0x20006;     // KEY_WRITE
inline constexpr std::uint32_t kRegistryAllButOwner = 0x3f;  // mask 63, read and write

/// The registry's storage cannot be read completely. Its contents are unknown; defaults must not
/// replace them.
class UnreadableStore : public RuntimeError {
public:
    /// `line` is the first damaged line of `file`, from 1; 0 when the system refuses the file, with
    /// `number` for the reason.
    UnreadableStore(std::string file, std::size_t line, ErrorNumber number)
        : RuntimeError(number, StandardDescription(static_cast<std::int32_t>(number)) + ": " +
                                   file + (line == 0 ? "" : ", line " + std::to_string(line))),
          mFile(std::move(file)),
          mDamagedLine(line) {}

    const std::string& File() const { return mFile; }
    std::size_t DamagedLine() const { return mDamagedLine; }

private:
    std::string mFile;
    std::size_t mDamagedLine;
};

/// The registry, used from one thread. Paths use "\", names and paths ignore letter case, and
/// all text is in the system's 8-bit code page. Each call returns a result. The only error raised
/// is UnreadableStore, by the first call that detects it. Later calls return kRegistryCorrupt
/// until the store can be read: one error, not one per value. Nothing is written meanwhile.
class Registry {
public:
    virtual ~Registry() = default;

    /// Opens an existing key (RegOpenKeyExA). `key` is untouched on failure.
    virtual RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                                   RegistryKey& key) = 0;

    /// Opens a key and creates missing parts of its path (RegCreateKeyExA, no class, options 0).
    virtual RegistryResult CreateKey(RegistryRoot root, const std::string& path,
                                     std::uint32_t access, RegistryKey& key) = 0;

    /// Queries a value (RegQueryValueExA). With a null `data`, only `type` and `size` (bytes,
    /// including the terminating NUL) are set. Otherwise `size` holds the buffer size on entry and
    /// the value's size on return; a buffer that is too small gives kRegistryMoreData.
    virtual RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                                      char* data, std::uint32_t& size) = 0;

    /// Sets a value to `bytes`, which for a string include its terminating NUL (RegSetValueExA).
    /// Embedded NULs of a string are kept.
    virtual RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                                    std::string_view bytes) = 0;

    /// Closes a key (RegCloseKey).
    virtual RegistryResult CloseKey(RegistryKey key) = 0;
};

}  // namespace vantor
