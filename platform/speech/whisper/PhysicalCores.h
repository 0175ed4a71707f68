// How many threads do the work of a machine best when all of them multiply.
#pragma once

#include <filesystem>
#include <optional>

namespace korvane {

/// The cores that this process may use, each counted once however many threads it runs at a time: two threads
/// on one core get in each other's way here. At most 16: beyond that they wait for the memory. At least 1.
/// \param granted  how much processor time a container grants, 2.5 for that of two and a half cores. With
/// more threads than that, all of them stand still at times.
int physicalCores(const std::filesystem::path& cpus = "/sys/devices/system/cpu",
                  std::optional<double> granted = std::nullopt);

}  // namespace korvane
