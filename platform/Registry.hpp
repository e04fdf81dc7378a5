// The registry with the system's own semantics: result codes instead of errors, two-step
// queries, and values as 8-bit bytes, since the stored format is defined on those.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantor {

/// Predefined root keys, with the system's values.
enum class RegistryRoot : std::uint32_t {
    CurrentUser = 0x80000001u,   // HKEY_CURRENT_USER
    LocalMachine = 0x80000002u,  // HKEY_LOCAL_MACHINE
};

using RegistryKey = std::uint64_t;  ///< an open key; 0 is none
using RegistryResult = std::int32_t;

// Results, with the system's values.
inline constexpr RegistryResult kRegistrySuccess = 0;        // ERROR_SUCCESS
inline constexpr RegistryResult kRegistryFileNotFound = 2;   // ERROR_FILE_NOT_FOUND
inline constexpr RegistryResult kRegistryAccessDenied = 5;   // ERROR_ACCESS_DENIED
inline constexpr RegistryResult kRegistryInvalidHandle = 6;  // ERROR_INVALID_HANDLE
inline constexpr RegistryResult kRegistryWriteFault = 29;    // ERROR_WRITE_FAULT
inline constexpr RegistryResult kRegistryMoreData = 234;     // ERROR_MORE_DATA

// Value types, with the system's values.
inline constexpr std::uint32_t kRegistryString = 1;  // REG_SZ, stored with its terminating NUL
inline constexpr std::uint32_t kRegistryBinary = 3;  // REG_BINARY
inline constexpr std::uint32_t kRegistryDword = 4;   // REG_DWORD, 4 bytes, low byte first

// Access masks, with the system's values.
inline constexpr std::uint32_t kRegistryQueryValue = 0x1;
inline constexpr std::uint32_t kRegistrySetValue = 0x2;
inline constexpr std::uint32_t kRegistryWrite = 0x20006;     // KEY_WRITE
inline constexpr std::uint32_t kRegistryAllButOwner = 0x3f;  // mask 63, read and write

/// The registry, used from one thread. Paths use "\", names and paths ignore letter case, and
/// all text is in the system's 8-bit code page. Nothing is raised: each call returns a result.
class Registry {
public:
    virtual ~Registry() = default;

    /// Opens an existing key (RegOpenKeyExA). `key` is untouched on failure.
    virtual RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                                   RegistryKey& key) = 0;

    /// Opens a key, creating what is missing of its path (RegCreateKeyExA, no class, options 0).
    virtual RegistryResult CreateKey(RegistryRoot root, const std::string& path,
                                     std::uint32_t access, RegistryKey& key) = 0;

    /// Queries a value (RegQueryValueExA). With a null `data` only `type` and `size` (bytes,
    /// the terminating NUL counted) are set. Otherwise `size` holds the buffer's size on entry
    /// and the value's on return; too small a buffer gives kRegistryMoreData.
    virtual RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                                      char* data, std::uint32_t& size) = 0;

    /// Sets a value to `bytes`, which for a string include its terminating NUL
    /// (RegSetValueExA). Bytes of value 0 inside a string are kept.
    virtual RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                                    std::string_view bytes) = 0;

    /// Closes a key (RegCloseKey).
    virtual RegistryResult CloseKey(RegistryKey key) = 0;
};

}  // namespace vantor
