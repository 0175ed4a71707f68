// What the window was started with, read from the command's arguments. Nothing here touches a file.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace korvane {

struct StartOptions {
    std::optional<std::filesystem::path> video;  ///< to be loaded as soon as the window stands
    std::string printout;  ///< what to print instead of opening a window; most often empty
};

/// \param arguments  without the program's name.
/// \throws UsageError
StartOptions parseStartOptions(const std::vector<std::string>& arguments);

}  // namespace korvane
