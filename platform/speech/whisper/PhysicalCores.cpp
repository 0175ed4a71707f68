#include "platform/speech/whisper/PhysicalCores.h"

#include <sched.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>

namespace korvane {

int physicalCores(const std::filesystem::path& cpus) {
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
    return std::clamp(static_cast<int>(cores.size()), 1, 16);
}

}  // namespace korvane
