#include "platform/headless/HeadlessFiles.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/portable/WildCards.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

/// `path` with "/" separators, without empty or "." parts.
std::string HeadlessFiles::Normal(const std::string& path) {
    std::string normal;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find_first_of("/\\", at), path.size());
        const std::string part = path.substr(at, end - at);
        if (at == 0 && end == 0) normal = "/";
        if (!part.empty() && part != ".") {
            if (!normal.empty() && normal.back() != '/') normal += '/';
            normal += part;
        }
        at = end + 1;
    }
    return normal;
}

std::string HeadlessFiles::FolderOf(const std::string& normalPath) {
    const std::size_t slash = normalPath.rfind('/');
    if (slash == std::string::npos) return {};
    return slash == 0 ? "/" : normalPath.substr(0, slash);
}

void HeadlessFiles::CheckFailure(const std::string& normalPath) const {
    const auto failure = mFailures.find(normalPath);
    if (failure != mFailures.end()) throw RuntimeError(failure->second);
}

const std::string& HeadlessFiles::Contents(const std::string& path) const {
    const std::string normal = Normal(path);
    CheckFailure(normal);
    const auto found = mFiles.find(normal);
    if (found != mFiles.end()) return found->second;
    const std::string folder = FolderOf(normal);
    const bool folderIsThere = folder.empty() || folder == "/" || mFolders.contains(folder);
    throw RuntimeError(folderIsThere || mVanishing.contains(normal) ? ErrorNumber::FileNotFound
                                                                    : ErrorNumber::PathNotFound);
}

std::string& HeadlessFiles::Writable(const std::string& path) {
    const std::string normal = Normal(path);
    CheckFailure(normal);
    if (normal.empty() || normal == "/" || mFolders.contains(normal))
        throw RuntimeError(ErrorNumber::PathFileAccess);
    const std::string folder = FolderOf(normal);
    if (!folder.empty() && folder != "/" && !mFolders.contains(folder))
        throw RuntimeError(ErrorNumber::PathNotFound);
    mVanishing.erase(normal);
    return mFiles[normal];
}

bool HeadlessFiles::Exists(const std::string& path) const {
    const std::string normal = Normal(path);
    return mFiles.contains(normal) || mVanishing.contains(normal);
}

bool HeadlessFiles::SameFile(const std::string& path, const std::string& other) const {
    return Exists(path) && Normal(path) == Normal(other);
}

std::uint64_t HeadlessFiles::Size(const std::string& path) const {
    return Contents(path).size();
}

std::string HeadlessFiles::ReadStart(const std::string& path, std::size_t most) const {
    return Contents(path).substr(0, most);
}

void HeadlessFiles::WriteAll(const std::string& path, std::string_view bytes) {
    Writable(path) = bytes;
}

void HeadlessFiles::Append(const std::string& path, std::string_view bytes) {
    Writable(path) += bytes;
}

class HeadlessOutputFile : public OutputFile {
public:
    HeadlessOutputFile(HeadlessFiles& files, std::string path)
        : mFiles(files), mPath(std::move(path)) {}
    void Write(std::string_view bytes) override { mFiles.Append(mPath, bytes); }

private:
    HeadlessFiles& mFiles;
    std::string mPath;
};

std::unique_ptr<OutputFile> HeadlessFiles::Create(const std::string& path) {
    WriteAll(path, "");
    return std::make_unique<HeadlessOutputFile>(*this, path);
}

void HeadlessFiles::Delete(const std::string& path) {
    static_cast<void>(Contents(path));  // raises the error for a missing file
    if (mHeld.contains(Normal(path))) throw RuntimeError(ErrorNumber::PermissionDenied);
    mFiles.erase(Normal(path));
}

void HeadlessFiles::CreateFolders(const std::string& path) {
    const std::string normal = Normal(path);
    CheckFailure(normal);
    for (std::string folder = normal; !folder.empty() && folder != "/"; folder = FolderOf(folder)) {
        if (mFiles.contains(folder)) throw RuntimeError(ErrorNumber::PathFileAccess);
    }
    for (std::string folder = normal; !folder.empty() && folder != "/"; folder = FolderOf(folder))
        mFolders.insert(folder);
}

std::vector<std::string> HeadlessFiles::List(const std::string& folder, const std::string& pattern,
                                             ListFilter filter) const {
    const std::string normal = Normal(folder);
    std::set<std::string> names;
    const auto consider = [&](const std::string& path) {
        if (FolderOf(path) != normal) return;
        const std::string name = path.substr(path.rfind('/') + 1);
        const bool hidden = name.starts_with('.') || mHidden.contains(path);
        if (hidden && !filter.hidden) return;
        if (mSystem.contains(path) && !filter.system) return;
        if (MatchesPattern(name, pattern)) names.insert(name);
    };
    for (const auto& entry : mFiles) consider(entry.first);
    for (const std::string& path : mVanishing) consider(path);
    return {names.begin(), names.end()};
}

void HeadlessFiles::Add(const std::string& path, std::string_view bytes) {
    CreateFolders(FolderOf(Normal(path)));
    WriteAll(path, bytes);
}

void HeadlessFiles::FailOn(const std::string& path, std::int32_t errorNumber) {
    if (errorNumber == 0)
        mFailures.erase(Normal(path));
    else
        mFailures[Normal(path)] = errorNumber;
}

void HeadlessFiles::MakeVanishing(const std::string& path) {
    mFiles.erase(Normal(path));
    mVanishing.insert(Normal(path));
}

}  // namespace vantor
