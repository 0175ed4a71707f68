#include "platform/speech/whisper/MemoryPressure.h"

#include <fstream>
#include <optional>
#include <string>

namespace korvane {
namespace {

/// The number behind a name at the beginning of a line, as in "MemTotal:   16384 kB".
std::optional<double> numberAfter(const std::filesystem::path& file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(name))
            continue;
        try {
            return std::stod(line.substr(name.size()));
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace

bool memoryIsShort(const std::filesystem::path& proc) {
    const auto total = numberAfter(proc / "meminfo", "MemTotal:");
    const auto available = numberAfter(proc / "meminfo", "MemAvailable:");
    if (total && available && *available < *total / 10)
        return true;
    const auto waiting = numberAfter(proc / "pressure" / "memory", "some avg10=");
    return waiting && *waiting >= 5.0;
}

}  // namespace korvane
