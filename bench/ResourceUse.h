// What a piece of work took.
#pragma once

#include <cstdint>

namespace korvane::bench {

struct ResourceUse {
    double wallSeconds = 0.0;
    double processorSeconds = 0.0;  ///< of all threads, in the program and in the kernel for it
    std::int64_t peakBytes = 0;     ///< resident, over the whole life of the process
};

}  // namespace korvane::bench
