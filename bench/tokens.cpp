// 5,000 tokens: the pool of visible ones against all of them.
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "bench/ChildProcess.h"
#include "bench/Measurements.h"
#include "bench/Statistics.h"

namespace korvane::bench {
namespace {

/// A frame of 60 a second.
constexpr double kFrameMs = 1000.0 / 60.0;

struct Shown {
    double shownMs = 0.0;
    double blockedMs = 0.0;
    double framesPerSecond = 0.0;
    double changeMs = 0.0;
    double megabytes = 0.0;
};

Shown run(const Setting& setting, const char* means) {
    const auto program = std::filesystem::path(setting.worker).parent_path() / "korvane-bench-tokens";
    const Finished finished = runChild({program.string(), means});
    Shown s;
    if (std::sscanf(finished.output.c_str(), "%lf %lf %lf %lf %lf", &s.shownMs, &s.blockedMs,
                    &s.framesPerSecond, &s.changeMs, &s.megabytes) != 5)
        throw std::runtime_error("korvane-bench-tokens printed: " + finished.output);
    return s;
}

double median(const std::vector<Shown>& all, double Shown::*of) {
    std::vector<double> values;
    for (const Shown& s : all)
        values.push_back(s.*of);
    return summarize(values).median;
}

double medianRatio(const std::vector<Shown>& a, const std::vector<Shown>& b, double Shown::*of) {
    std::vector<double> values;
    for (std::size_t i = 0; i < a.size(); ++i)
        values.push_back(a[i].*of / b[i].*of);
    return summarize(values).median;
}

}  // namespace

void measureTokens(const Setting& setting, Report& report) {
    report.section("5,000 tokens, without a graphics processor");
    std::vector<Shown> pool;
    std::vector<Shown> all;
    for (int i = 0; i < setting.rounds; ++i) {
        pool.push_back(run(setting, "pool"));
        all.push_back(run(setting, "repeater"));
    }
    const auto both = [&](const char* name, double Shown::*of, const char* unit) {
        report.value(std::string(name) + ", ours", median(pool, of), unit);
        report.value(std::string(name) + ", Repeater", median(all, of), unit);
    };
    using Side = Goal::Side;
    both("until shown", &Shown::shownMs, "ms");
    report.value("Repeater / ours, until shown", medianRatio(all, pool, &Shown::shownMs), "",
                 Goal{Side::atLeast, 2.0});
    both("longest turn of the loop", &Shown::blockedMs, "ms of processor time");
    both("scrolling", &Shown::framesPerSecond, "frames/s");
    report.value("ours / Repeater, scrolling", medianRatio(pool, all, &Shown::framesPerSecond), "",
                 Goal{Side::atLeast, 2.0});
    both("memory", &Shown::megabytes, "MB");
    report.value("Repeater / ours, memory", medianRatio(all, pool, &Shown::megabytes), "",
                 Goal{Side::atLeast, 3.0});
    both("one token changed until repainted", &Shown::changeMs, "ms");
    report.value("of a frame of 16.7 ms", median(pool, &Shown::changeMs) / kFrameMs, "",
                 Goal{Side::atMost, 1.0});
}

}  // namespace korvane::bench
