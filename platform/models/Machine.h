// How fast a model will be here, and which one suits this machine.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/models/ControlGroup.h"
#include "platform/models/SpeechModel.h"
#include "platform/models/SpeechModelCatalogue.h"

namespace korvane {

/// What of it this process may use: in a container or a service it may be less than there is.
struct Machine {
    int cores = 1;
    std::uint64_t memoryBytes = 0;   ///< altogether, what is in use included
    double operationsPerSecond = 0;  ///< multiplications and additions of all cores together, as measured

    /// \param measure  how many operations in a second so many threads make together.
    static Machine within(const ResourceLimits& limits, int cores, std::uint64_t memoryBytes,
                          const std::function<double(int threads)>& measure);
    /// The memory that this process may use. Any thread; at once.
    static std::uint64_t usableMemoryBytes();
    /// This machine, measured when it is first asked for: that takes some 30 ms on all cores. Any thread.
    static const Machine& here();
};

/// How many seconds of sound are recognised in one second: 4 is four times faster than the speech.
/// An estimate, right within a factor of two or so.
/// \param operationsPerSecond  of the model, for a second of sound; more than 0.
double expectedSpeed(double operationsPerSecond, const Machine& machine);
double expectedSpeed(const SpeechModel& model, const Machine& machine);

/// The best of the offered models that leaves half of the memory to others and is at least twice as fast as
/// the speech; when none is, the smallest. None of an empty list.
std::optional<SpeechModel> recommendedModel(const SpeechModelCatalogue& catalogue, const Machine& machine);

}  // namespace korvane
