#include "platform/folders/StandardFolders.h"

#include <cstdlib>
#include <sstream>

namespace korvane {
namespace {

/// The base directory rules have relative paths ignored.
std::filesystem::path absoluteOr(const std::optional<std::string>& named, std::filesystem::path fallback) {
    if (named && std::filesystem::path(*named).is_absolute())
        return *named;
    return fallback;
}

/// The absolute ones of a list as in "/a:/b".
std::vector<std::filesystem::path> foldersIn(const std::optional<std::string>& named, const char* fallback) {
    std::vector<std::filesystem::path> folders;
    std::istringstream list(named && !named->empty() ? *named : fallback);
    for (std::string folder; std::getline(list, folder, ':');) {
        if (std::filesystem::path(folder).is_absolute())
            folders.emplace_back(folder);
    }
    return folders;
}

}  // namespace

Environment processEnvironment() {
    return [](const char* name) -> std::optional<std::string> {
        const char* value = std::getenv(name);
        return value ? std::optional<std::string>(value) : std::nullopt;
    };
}

StandardFolders StandardFolders::of(const Environment& environment) {
    StandardFolders folders;
    const auto home = absoluteOr(environment("HOME"), {});
    folders.configHome = absoluteOr(environment("XDG_CONFIG_HOME"), home.empty() ? home : home / ".config");
    folders.dataHome =
        absoluteOr(environment("XDG_DATA_HOME"), home.empty() ? home : home / ".local" / "share");
    folders.dataDirs = foldersIn(environment("XDG_DATA_DIRS"), "/usr/local/share:/usr/share");
    folders.configDirs = foldersIn(environment("XDG_CONFIG_DIRS"), "/etc/xdg");
    return folders;
}

}  // namespace korvane
