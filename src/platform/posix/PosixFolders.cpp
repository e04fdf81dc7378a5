// The user's folders on POSIX.
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <system_error>

#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixServices.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

std::string WithoutEndingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

/// The value of an environment variable that must be an absolute path; other values are ignored.
std::string PathFromEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value == '/' ? WithoutEndingSlash(value) : std::string();
}

std::string Home() {
    std::string home = PathFromEnvironment("HOME");
    if (!home.empty()) return home;
    const passwd* const user = getpwuid(getuid());
    if (user == nullptr || user->pw_dir == nullptr || *user->pw_dir == '\0')
        throw RuntimeError(ErrorNumber::PathNotFound);
    return WithoutEndingSlash(user->pw_dir);
}

/// The folder set by a line `NAME="$HOME/..."` or `NAME="/..."`; empty when it is another line.
std::string FolderOfLine(std::string_view line, const std::string& name, const std::string& home) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const std::string start = name + "=\"";
    if (!line.starts_with(start)) return {};
    line.remove_prefix(start.size());

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

class PosixFolders : public Folders {
public:
    std::string ApplicationData() const override {
        const std::string configured = PathFromEnvironment("XDG_CONFIG_HOME");
        return configured.empty() ? Home() + "/.config" : configured;
    }

    std::string PersonalDocuments() const override {
        const std::string home = Home();
        std::string documents = home + "/Documents";
        // Systems without a desktop usually have no such file.
        std::istringstream file(ReadRegularFile(ApplicationData() + "/user-dirs.dirs").bytes);
        for (std::string line; std::getline(file, line);) {
            const std::string folder = FolderOfLine(line, "XDG_DOCUMENTS_DIR", home);
            if (!folder.empty()) documents = folder;
        }
        return documents;
    }

    std::string Current() const override {
        std::error_code failed;
        return std::filesystem::current_path(failed);
    }
};

}  // namespace

std::unique_ptr<Folders> MakePosixFolders() {
    return std::make_unique<PosixFolders>();
}

}  // namespace vantor
