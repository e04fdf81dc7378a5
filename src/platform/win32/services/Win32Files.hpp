// Files on Windows, by wide paths. Patterns are matched by the portable code:
// FindFirstFile would also match the short (8.3) names.
#pragma once

#include "platform/Files.hpp"

namespace vantor {

class Win32Files : public Files {
public:
    bool Exists(const std::string& path) const override;
    bool SameFile(const std::string& path, const std::string& other) const override;
    std::uint64_t Size(const std::string& path) const override;
    std::string ReadStart(const std::string& path, std::size_t most) const override;
    void WriteAll(const std::string& path, std::string_view bytes) override;
    void Append(const std::string& path, std::string_view bytes) override;
    std::unique_ptr<OutputFile> Create(const std::string& path) override;
    void Delete(const std::string& path) override;
    void CreateFolders(const std::string& path) override;
    std::vector<std::string> List(const std::string& folder, const std::string& pattern,
                                  ListFilter filter) const override;
};

}  // namespace vantor
