#include "platform/posix/PosixFolders.hpp"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <string_view>

#include "platform/posix/PosixFiles.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

/// The value of an environment variable that must be an absolute path; other values are ignored.
std::string PathFromEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value == '/' ? value : std::string();
}

std::string WithoutEndingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

std::string Home() {
    std::string home = PathFromEnvironment("HOME");
    if (!home.empty()) return WithoutEndingSlash(home);
    const passwd* const user = getpwuid(getuid());
    if (user == nullptr || user->pw_dir == nullptr || *user->pw_dir == '\0')
        throw RuntimeError(ErrorNumber::PathNotFound);
    return WithoutEndingSlash(user->pw_dir);
}

/// The folder set by a line `NAME="$HOME/..."` or `NAME="/..."`; empty when it is another line.
std::string FolderOfLine(std::string_view line, std::string_view name, const std::string& home) {
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos) return {};
    line.remove_prefix(start);
    if (!line.starts_with(name)) return {};
    line.remove_prefix(name.size());
    if (!line.starts_with("=\"")) return {};
    line.remove_prefix(2);

    std::string folder;
    constexpr std::string_view kHome = "$HOME";
    if (line.starts_with(kHome)) {
        folder = home;
        line.remove_prefix(kHome.size());
    } else if (!line.starts_with('/')) {
        return {};
    }
    for (std::size_t at = 0; at < line.size() && line[at] != '"'; ++at) {
        if (line[at] == '\\' && at + 1 < line.size()) ++at;
        folder += line[at];
    }
    return WithoutEndingSlash(folder);
}

std::string FolderFromUserDirs(const std::string& file, std::string_view name,
                               const std::string& home) {
    std::string text;
    try {
        text = PosixFiles().ReadAll(file);
    } catch (const RuntimeError&) {
        return {};  // systems without a desktop usually have no such file
    }
    std::string folder;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        const std::string found = FolderOfLine(rest.substr(0, end), name, home);
        if (!found.empty()) folder = found;
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return folder;
}

}  // namespace

std::string PosixFolders::ApplicationData() const {
    const std::string configured = PathFromEnvironment("XDG_CONFIG_HOME");
    if (!configured.empty()) return WithoutEndingSlash(configured);
    return Home() + "/.config";
}

std::string PosixFolders::PersonalDocuments() const {
    const std::string home = Home();
    const std::string configured =
        FolderFromUserDirs(ApplicationData() + "/user-dirs.dirs", "XDG_DOCUMENTS_DIR", home);
    return configured.empty() ? home + "/Documents" : configured;
}

std::string PosixFolders::Current() const {
    std::array<char, PATH_MAX> folder{};
    return getcwd(folder.data(), folder.size()) == nullptr ? std::string() : folder.data();
}

}  // namespace vantor
