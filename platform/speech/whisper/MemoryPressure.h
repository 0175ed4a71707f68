// Whether this machine is short of memory, so that what can be had again had better be given back.
#pragma once

#include <filesystem>

namespace korvane {

/// Less than a tenth of the memory is left, or programs have waited for memory in 5 % or more of the last ten
/// seconds, as the kernel counts. What can't be read says nothing.
bool memoryIsShort(const std::filesystem::path& proc = "/proc");

}  // namespace korvane
