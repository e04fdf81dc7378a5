// The registry on POSIX: one text file in the registry editor's export format, shared by all
// programs of the user. It adds only storage to the in-memory registry.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <string>

#include "platform/Folders.hpp"
#include "platform/portable/RegistryHive.hpp"

namespace vantor {

/// The path of the file below the user's application-data folder.
std::string DefaultRegistryFile(const Folders& folders);

/// The file is checked for changes whenever a key is opened; queries use the copy in memory. Every
/// change applies to the current contents of the file, is on disk when its call returns, and is
/// atomic. The file is written as version 4 of the format, without comments.
/// Concurrent writers wait for each other for up to a few seconds. A symbolic link in the file's
/// place is followed. A file that cannot be read completely raises UnreadableStore.
class PosixRegistry : public Registry {
public:
    explicit PosixRegistry(std::string file) : mFile(std::move(file)) {}

    RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                           RegistryKey& key) override;
    RegistryResult CreateKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                             RegistryKey& key) override;
    RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                              char* data, std::uint32_t& size) override;
    RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                            std::string_view bytes) override;
    RegistryResult CloseKey(RegistryKey key) override;

private:
    /// Identifies one state of the file; all zero when there is no file.
    struct Stamp {
        std::uint64_t node = 0;
        std::int64_t size = 0;
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;
        friend bool operator==(const Stamp&, const Stamp&) = default;
    };

    static Stamp StampOf(const struct stat& status);
    RegistryResult Refresh();
    RegistryResult Reread();
    RegistryResult Tell(const UnreadableStore& error);
    RegistryResult Change(const std::function<RegistryResult()>& change);
    RegistryResult Save(const std::string& target, const std::string& text);

    std::string mFile;
    RegistryHive mHive;
    Stamp mStamp;        // of the contents of mHive
    bool mTold = false;  // UnreadableStore was raised
};

}  // namespace vantor
