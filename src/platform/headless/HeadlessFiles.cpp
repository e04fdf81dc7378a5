#include "platform/headless/HeadlessFiles.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/portable/WildCards.hpp"
#include "support/errors/RuntimeError.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

class HeadlessOutputFile : public OutputFile {
public:
    HeadlessOutputFile(HeadlessFiles& files, std::string path)
        : mFiles(files), mPath(std::move(path)) {}
    void Write(std::string_view bytes) override { mFiles.Append(mPath, bytes); }

private:
    HeadlessFiles& mFiles;
    std::string mPath;
};

}  // namespace

/// `path` with "/" separators, without empty or "." parts.
std::string HeadlessFiles::Normal(std::string_view path) {
    std::string normal = path.starts_with('/') || path.starts_with('\\') ? "/" : "";
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of("/\\"), path.size());
        const std::string_view part = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (part.empty() || part == ".") continue;
        if (!normal.empty() && normal.back() != '/') normal += '/';
        normal += part;
    }
    return normal;
}

std::string HeadlessFiles::ParentOf(const std::string& normalPath) {
    return Normal(FolderOf(normalPath));
}

void HeadlessFiles::CheckFailure(const std::string& normalPath) const {
    const auto failure = mFailures.find(normalPath);
    if (failure != mFailures.end() && failure->second != 0) throw RuntimeError(failure->second);
}

const std::string& HeadlessFiles::Contents(const std::string& path) const {
    const std::string normal = Normal(path);
    CheckFailure(normal);
    const auto found = mFiles.find(normal);
    if (found != mFiles.end()) return found->second;
    const bool onlyFileIsMissing =
        mFolders.contains(ParentOf(normal)) || mVanishing.contains(normal);
    throw RuntimeError(onlyFileIsMissing ? ErrorNumber::FileNotFound : ErrorNumber::PathNotFound);
}

std::string& HeadlessFiles::Writable(const std::string& path) {
    const std::string normal = Normal(path);
    CheckFailure(normal);
    if (mFolders.contains(normal)) throw RuntimeError(ErrorNumber::PathFileAccess);
    if (!mFolders.contains(ParentOf(normal))) throw RuntimeError(ErrorNumber::PathNotFound);
    mVanishing.erase(normal);
    return mFiles[normal];
}

bool HeadlessFiles::Exists(const std::string& path) const {
    const std::string normal = Normal(path);
    return mFiles.contains(normal) || mVanishing.contains(normal);
}

std::unique_ptr<OutputFile> HeadlessFiles::Create(const std::string& path) {
    WriteAll(path, "");
    return std::make_unique<HeadlessOutputFile>(*this, path);
}

void HeadlessFiles::Delete(const std::string& path) {
    Contents(path);  // raises the error for a missing file
    if (mHeld.contains(Normal(path))) throw RuntimeError(ErrorNumber::PermissionDenied);
    mFiles.erase(Normal(path));
}

void HeadlessFiles::CreateFolders(const std::string& path) {
    std::string folder = Normal(path);
    CheckFailure(folder);
    std::set<std::string> made;
    for (; !mFolders.contains(folder); folder = ParentOf(folder)) {
        if (mFiles.contains(folder)) throw RuntimeError(ErrorNumber::PathFileAccess);
        made.insert(folder);
    }
    mFolders.merge(made);
}

std::vector<std::string> HeadlessFiles::List(const std::string& folder, const std::string& pattern,
                                             ListFilter filter) const {
    const std::string normal = Normal(folder);
    std::set<std::string> names;
    const auto consider = [&](const std::string& path) {
        if (ParentOf(path) != normal) return;
        const std::string name(FileNameOf(path));
        const bool hidden = name.starts_with('.') || mHidden.contains(path);
        if (hidden && !filter.hidden) return;
        if (MatchesPattern(name, pattern)) names.insert(name);
    };
    for (const auto& entry : mFiles) consider(entry.first);
    for (const std::string& path : mVanishing) consider(path);
    return {names.begin(), names.end()};
}

void HeadlessFiles::Add(const std::string& path, std::string_view bytes) {
    CreateFolders(ParentOf(Normal(path)));
    WriteAll(path, bytes);
}

void HeadlessFiles::MakeVanishing(const std::string& path) {
    mFiles.erase(Normal(path));
    mVanishing.insert(Normal(path));
}

}  // namespace vantor
