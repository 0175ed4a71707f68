// What the kernel says about another process while it runs.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>

namespace korvane::bench {

/// Processor seconds of all its threads, those that ended too, in steps of 10 ms; none once it is gone.
std::optional<double> processorSeconds(pid_t process);

/// The most memory that it has held so far, in MB; 0 once it is gone.
double peakMegabytes(pid_t process);

/// Waits until the process has used no processor for 150 ms, or is gone.
/// \return seconds from `since` to when it last worked, which is told on 10 ms.
/// \throws std::runtime_error when it still works 10 s after `since`.
double secondsUntilAtRest(pid_t process, std::chrono::steady_clock::time_point since);

}  // namespace korvane::bench
