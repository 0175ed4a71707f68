#include "platform/speech/whisper/PhysicalCores.h"

#include <sched.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <set>
#include <string>

namespace korvane {

int physicalCores(const std::filesystem::path& cpus, std::optional<double> granted) {
    cpu_set_t usable;
    CPU_ZERO(&usable);
    if (sched_getaffinity(0, sizeof usable, &usable) != 0)
        return 1;
    std::set<std::string> cores;
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (!CPU_ISSET(cpu, &usable))
            continue;
        // All threads of a core have the same list. Where there is none, each counts for itself.
        std::string siblings = "cpu" + std::to_string(cpu);
        std::ifstream(cpus / siblings / "topology" / "thread_siblings_list") >> siblings;
        cores.insert(siblings);
    }
    constexpr double most = 16;
    return static_cast<int>(std::clamp(std::ceil(granted.value_or(most)), 1.0,
                                       std::clamp(static_cast<double>(cores.size()), 1.0, most)));
}

}  // namespace korvane
