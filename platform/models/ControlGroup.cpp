#include "platform/models/ControlGroup.h"

#include <algorithm>
#include <fstream>
#include <string>

namespace korvane {
namespace {

namespace fs = std::filesystem;

template <class T>
void tighten(std::optional<T>& limit, T other) {
    limit = limit ? std::min(*limit, other) : other;
}

void readMemory(const fs::path& file, ResourceLimits& limits) {
    // Where it says "max" instead of a number, there is no limit.
    if (std::uint64_t bytes = 0; std::ifstream(file) >> bytes)
        tighten(limits.memoryBytes, bytes);
}

}  // namespace

std::vector<fs::path> ownControlGroups(const fs::path& proc, const fs::path& groups) {
    constexpr std::string_view versionTwo = "0::/";
    std::ifstream memberships(proc / "self" / "cgroup");
    std::vector<fs::path> found;
    for (std::string line; std::getline(memberships, line);) {
        if (!line.starts_with(versionTwo))
            continue;
        auto path = fs::path(line.substr(versionTwo.size())).lexically_normal();
        // Beyond what this container may see, where the mounted one is all that concerns it.
        if (path.begin() != path.end() && *path.begin() == "..")
            path.clear();
        for (; !path.empty() && path != "."; path = path.parent_path())
            found.push_back(groups / path);
        found.push_back(groups);
        break;
    }
    return found;
}

ResourceLimits controlGroupLimits(const fs::path& proc, const fs::path& groups) {
    ResourceLimits limits;
    for (const auto& group : ownControlGroups(proc, groups)) {
        // Above "high" programs are slowed down to a crawl, at "max" one of them is ended.
        readMemory(group / "memory.high", limits);
        readMemory(group / "memory.max", limits);
        // So many microseconds of processor time in each period.
        double quota = 0;
        double period = 0;
        if (std::ifstream(group / "cpu.max") >> quota >> period && quota > 0 && period > 0)
            tighten(limits.processors, quota / period);
    }
    return limits;
}

}  // namespace korvane
