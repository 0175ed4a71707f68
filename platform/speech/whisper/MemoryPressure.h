// Whether this program is short of memory, so that what can be had again had better be given back.
#pragma once

#include <filesystem>

namespace korvane {

/// Less than a tenth of the memory is left, or programs have waited for memory in 5 % or more of the last ten
/// seconds, as the kernel counts: on the machine, or in a control group that this process is in (a container,
/// a service with a limit). What can't be read says nothing.
/// \param groups  where the control groups of version 2 are mounted.
bool memoryIsShort(const std::filesystem::path& proc = "/proc",
                   const std::filesystem::path& groups = "/sys/fs/cgroup");

}  // namespace korvane
