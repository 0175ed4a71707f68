#include "platform/speech/whisper/MemoryPressure.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <string>

#include "platform/models/ControlGroup.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

constexpr double leastShareLeft = 0.1;
constexpr double mostPercentWaiting = 5.0;

/// What follows a name at the beginning of a line, as in "MemTotal:   16384 kB".
std::optional<std::string> textAfter(const fs::path& file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name))
            return line.substr(name.size());
    }
    return std::nullopt;
}

std::optional<double> numberAfter(const fs::path& file, const std::string& name) {
    const auto text = textAfter(file, name);
    if (!text)
        return std::nullopt;
    try {
        return std::stod(*text);
    } catch (const std::exception&) {
        return std::nullopt;  // such as "max": there is no limit
    }
}

bool programsWait(const fs::path& pressure) {
    return numberAfter(pressure, "some avg10=").value_or(0.0) >= mostPercentWaiting;
}

bool machineIsShort(const fs::path& proc) {
    const auto total = numberAfter(proc / "meminfo", "MemTotal:");
    const auto available = numberAfter(proc / "meminfo", "MemAvailable:");
    return (total && available && *available < *total * leastShareLeft) ||
           programsWait(proc / "pressure" / "memory");
}

bool groupIsShort(const fs::path& group) {
    // Above "high" its programs are slowed down, at "max" one of them is ended.
    constexpr double none = std::numeric_limits<double>::infinity();
    const double limit = std::min(numberAfter(group / "memory.high", "").value_or(none),
                                  numberAfter(group / "memory.max", "").value_or(none));
    const auto charged = numberAfter(group / "memory.current", "");
    // Files that were read and aren't used any more count too, until somebody needs the room.
    const double cached = numberAfter(group / "memory.stat", "inactive_file ").value_or(0.0);
    const bool isFull = charged && limit - (*charged - cached) < limit * leastShareLeft;
    return isFull || programsWait(group / "memory.pressure");
}

}  // namespace

bool memoryIsShort(const fs::path& proc, const fs::path& groups) {
    const auto own = ownControlGroups(proc, groups);  // each may have a limit, and the tightest counts
    return machineIsShort(proc) || std::any_of(own.begin(), own.end(), groupIsShort);
}

}  // namespace korvane
