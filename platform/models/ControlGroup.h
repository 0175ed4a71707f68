// What this process may use of the machine, where it runs in a container or a service with limits.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace korvane {

struct ResourceLimits {
    std::optional<std::uint64_t> memoryBytes;
    std::optional<double> processors;  ///< of processor time: 0.5 is half of one
};

/// The control groups (version 2) of this process, from its own up to the mounted one; none where there are
/// none. Any thread; at once.
/// \param groups  where they are mounted.
std::vector<std::filesystem::path> ownControlGroups(const std::filesystem::path& proc = "/proc",
                                                    const std::filesystem::path& groups = "/sys/fs/cgroup");

/// The tightest limits of those groups. What can't be read limits nothing. Any thread; at once.
ResourceLimits controlGroupLimits(const std::filesystem::path& proc = "/proc",
                                  const std::filesystem::path& groups = "/sys/fs/cgroup");

}  // namespace korvane
