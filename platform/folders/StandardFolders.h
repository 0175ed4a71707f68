// Where a desktop keeps a program's files, by the XDG base directory rules.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace korvane {

/// Reads one environment variable; empty when it isn't set.
using Environment = std::function<std::optional<std::string>(const char* name)>;

/// The variables of this process, as they are at each call.
Environment processEnvironment();

/// Folders that nobody has named (no home either) are empty paths; none of them need exist.
struct StandardFolders {
    std::filesystem::path configHome;
    std::filesystem::path dataHome;
    std::vector<std::filesystem::path> dataDirs;    ///< the system's, in order of preference
    std::vector<std::filesystem::path> configDirs;  ///< the system's, in order of preference
    /// Where an administrator forbids things: not among configDirs, which a person's environment may change.
    std::filesystem::path systemConfig = "/etc";

    static StandardFolders of(const Environment& environment);
};

}  // namespace korvane
