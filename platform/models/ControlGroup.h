// What this process may use of the machine, where it runs in a container or a service with limits.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace korvane {

struct ResourceLimits {
    std::optional<std::uint64_t> memoryBytes;
    std::optional<double> processors;  ///< of processor time: 0.5 is half of one
};

/// The tightest limits of the control groups (version 2) from this process's own up to the mounted one. What
/// can't be read limits nothing. Any thread; at once.
/// \param groups  where they are mounted.
ResourceLimits controlGroupLimits(const std::filesystem::path& proc = "/proc",
                                  const std::filesystem::path& groups = "/sys/fs/cgroup");

}  // namespace korvane
