#include "bench/whisper/WatchedProcess.h"

#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace korvane::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLook{5};
constexpr std::chrono::milliseconds kQuiet{150};
constexpr std::chrono::seconds kLongest{10};

std::string fileOf(pid_t process, const char* name) {
    return "/proc/" + std::to_string(process) + '/' + name;
}

}  // namespace

std::optional<double> processorSeconds(pid_t process) {
    std::ifstream file(fileOf(process, "stat"));
    std::string line;
    if (!std::getline(file, line))
        return std::nullopt;
    // The program's name stands in brackets and may hold anything; the state follows.
    std::istringstream fields(line.substr(line.rfind(')') + 2));
    char state = 0;
    fields >> state;
    if (state == 'Z')
        return std::nullopt;
    long long skipped = 0;
    for (int field = 4; field < 14; ++field)
        fields >> skipped;
    long long user = 0;
    long long kernel = 0;
    fields >> user >> kernel;
    return static_cast<double>(user + kernel) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double peakMegabytes(pid_t process) {
    std::ifstream status(fileOf(process, "status"));
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::stod(line.substr(6)) * 1024 / 1e6;
    return 0.0;
}

double secondsUntilAtRest(pid_t process, Clock::time_point since) {
    auto before = processorSeconds(process);
    auto worked = since;
    while (before && Clock::now() - worked < kQuiet) {
        std::this_thread::sleep_for(kLook);
        const auto now = processorSeconds(process);
        if (now != before)
            worked = Clock::now();
        before = now;
        if (worked - since > kLongest)
            throw std::runtime_error("The worker still works 10 s after it was stopped.");
    }
    return std::chrono::duration<double>(worked - since).count();
}

}  // namespace korvane::bench
