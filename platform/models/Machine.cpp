#include "platform/models/Machine.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "platform/models/MultiplyBenchmark.h"

namespace korvane {
namespace {

// The share of the measured multiplications that is left for a model: quantised weights are unpacked as they
// are used, matrices come from memory, and attention, tables and threads that wait for one another take
// their part. A fifth is what was measured with models of the listed shapes and kinds of weights (random
// ones: the time doesn't depend on what they say) on a core with 512-bit instructions, where the
// multiplications reached 188e9 a second: 35e9 with tiny, 37e9 with base, 42e9 with small, all at 8 bits.
constexpr double usefulShare = 0.2;
// More threads than that gain little: they wait for the memory and for one another.
constexpr double mostUsefulCores = 16;
// Below this a person waits longer than half of what was said.
constexpr double comfortableSpeed = 2;

/// Those that this process was not kept away from.
int usableCores() {
    cpu_set_t set;
    if (sched_getaffinity(0, sizeof(set), &set) == 0)
        return std::max(CPU_COUNT(&set), 1);
    return static_cast<int>(std::max(sysconf(_SC_NPROCESSORS_ONLN), 1L));
}

std::uint64_t installedMemoryBytes() {
    const auto pages = sysconf(_SC_PHYS_PAGES);
    const auto size = sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(size) : 0;
}

std::uint64_t withinLimit(const ResourceLimits& limits, std::uint64_t memoryBytes) {
    return std::min(memoryBytes, limits.memoryBytes.value_or(memoryBytes));
}

}  // namespace

Machine Machine::within(const ResourceLimits& limits, int cores, std::uint64_t memoryBytes,
                        const std::function<double(int threads)>& measure) {
    const double processors = std::min<double>(cores, limits.processors.value_or(cores));
    Machine machine;
    machine.cores = static_cast<int>(std::ceil(processors));
    machine.memoryBytes = withinLimit(limits, memoryBytes);
    // The measurement is over before a limit on time begins to be felt.
    machine.operationsPerSecond = measure(machine.cores) * processors / machine.cores;
    return machine;
}

std::uint64_t Machine::usableMemoryBytes() {
    return withinLimit(controlGroupLimits(), installedMemoryBytes());
}

const Machine& Machine::here() {
    static const Machine machine =
        within(controlGroupLimits(), usableCores(), installedMemoryBytes(), measureMultiplications);
    return machine;
}

double expectedSpeed(double operationsPerSecond, const Machine& machine) {
    const double share = std::min(1.0, mostUsefulCores / std::max(machine.cores, 1));
    return machine.operationsPerSecond * share * usefulShare / operationsPerSecond;
}

double expectedSpeed(const SpeechModel& model, const Machine& machine) {
    return expectedSpeed(model.operationsPerSecond, machine);
}

std::optional<SpeechModel> recommendedModel(const SpeechModelCatalogue& catalogue, const Machine& machine) {
    const auto offered = catalogue.offered();
    if (offered.empty())
        return std::nullopt;
    const auto work = [](const SpeechModel& a, const SpeechModel& b) {
        return a.operationsPerSecond < b.operationsPerSecond;
    };
    std::optional<SpeechModel> best;
    for (const auto& model : offered) {
        const bool fits = model.memoryBytes <= machine.memoryBytes / 2;
        if (fits && expectedSpeed(model, machine) >= comfortableSpeed && (!best || work(*best, model)))
            best = model;
    }
    return best ? best : *std::min_element(offered.begin(), offered.end(), work);
}

}  // namespace korvane
