// How many threads do the work of a machine best when all of them multiply.
#pragma once

#include <filesystem>

namespace korvane {

/// The cores that this process may use, each counted once however many threads it runs at a time: two threads
/// on one core get in each other's way here. At most 16: beyond that they wait for the memory. At least 1.
int physicalCores(const std::filesystem::path& cpus = "/sys/devices/system/cpu");

}  // namespace korvane
